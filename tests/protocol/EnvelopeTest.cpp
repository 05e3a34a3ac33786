// The envelope and the registration and session records: golden texts and the reading rules.
#include "protocol/Envelope.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"

#include <gtest/gtest.h>

namespace {

using Core::CommandIO::CommandInputBase;
using Corvane::CommandIO::CommandOutputBase;
using Corvane::CommandIO::DataManagement::CorvaneGetRootFoldersOutput;
using Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput;
using namespace Core::Registration;

TEST(Envelope, UnversionedInputWritesCommandAndSessionOnly) {
    CommandInputBase input("GETCONNECTIONSTATUS");
    input.SessionId = "s-1";
    EXPECT_EQ(R"({"Command":"GETCONNECTIONSTATUS","SessionId":"s-1"})", input.ToJson().str());
}

TEST(Envelope, OutputReadsErrorsAndLeavesMissingFieldsAtDefaults) {
    CommandOutputBase output(
        R"({"Errors":[{"ErrorCode":13,"Ids":["a","b"]},{"Ids":["c"]},{"ErrorCode":2}]})");
    ASSERT_EQ(3U, output.Errors.size());
    EXPECT_EQ(13, output.Errors[0]->ErrorCode);
    EXPECT_EQ((Core::DynamicArray<Core::TevString>{"a", "b"}), output.Errors[0]->Ids);
    EXPECT_EQ(0, output.Errors[1]->ErrorCode);
    EXPECT_TRUE(output.Errors[2]->Ids.empty());
}

TEST(Registration, ClientInfoIsWrittenOnlyWhenPresent) {
    RegisterClientInput input;
    input.ProcessId = 4242;
    input.ProcessStartTime = "45000.5";
    input.FilePath = "C:\\Arbo\\arbo.exe";
    EXPECT_EQ(R"({"ProcessId":4242,"ProcessStartTime":"45000.5","FilePath":"C:\\Arbo\\arbo.exe"})",
              input.ToJson().str());
    input.ClientInfo = std::make_unique<RegisterClientInfo>();
    EXPECT_EQ(R"({"ProcessId":4242,"ProcessStartTime":"45000.5","FilePath":"C:\\Arbo\\arbo.exe",)"
              R"("ClientInfo":{"FullName":"","Product":""}})",
              input.ToJson().str());
}

TEST(Registration, DeregistrationAndAnswer) {
    DeRegisterClientInput input;
    input.SessionId = "s-9";
    EXPECT_EQ(R"({"SessionId":"s-9","ProcessId":0,"ProcessStartTime":""})", input.ToJson().str());
    EXPECT_EQ("granted", RegisterClientOutput(R"({"SessionId":"granted"})").SessionId);
    EXPECT_EQ("", RegisterClientOutput(R"({"Errors":[]})").SessionId);
}

TEST(SessionOutputs, SessionInfoReadsEveryKey) {
    CorvaneGetSessionInfoOutput info(
        R"({"Errors":[],"AuthenticatedUserName":"Ann","CorvaneLogPath":"/l","CloudGatewayLogPath":"/g",)"
        R"("UserEmail":"a@x","IsLoggedIn":true,"UserId":"u1","Version":"3.2","Capabilities":["c1"]})");
    EXPECT_EQ("Ann", info.AuthenticatedUserName);
    EXPECT_EQ("/l", info.CorvaneLogPath);
    EXPECT_EQ("/g", info.CloudGatewayLogPath);
    EXPECT_EQ("a@x", info.UserEmail);
    EXPECT_TRUE(info.IsLoggedIn);
    EXPECT_EQ("u1", info.UserId);
    EXPECT_EQ("3.2", info.Version);
    EXPECT_EQ((Core::DynamicArray<Core::TevString>{"c1"}), info.Capabilities);
    EXPECT_TRUE(CorvaneGetRootFoldersOutput(R"({"Errors":[]})").RootFolders.empty());
}

} // namespace
