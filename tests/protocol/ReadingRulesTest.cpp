// What the reader takes from an answer that is valid JSON but not quite what a record expects.
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/SessionOutputs.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include <string>

namespace {

using Corvane::CommandIO::CommandOutputBase;
using Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput;
using Corvane::DataTypes::CorvaneContainerInformation;
using Corvane::DataTypes::CorvaneDataset;
using Corvane::DataTypes::CorvaneStringToObjectTypesPair;
using TextList = Core::DynamicArray<Core::TevString>;
using IntegerList = Core::DynamicArray<std::int32_t>;

constexpr const char* FullSessionInfo =
    R"({"Errors":[{"ErrorCode":1}],"AuthenticatedUserName":"Ann","IsLoggedIn":true,)"
    R"("UserId":"u1","Version":"3.2","Capabilities":["c1","c2"]})";

// Every member of a session-information record in one text: the errors counted, the flag as 0/1.
std::string Members(const CorvaneGetSessionInfoOutput& info) {
    std::string text = std::to_string(info.Errors.size());
    for (const Core::TevString* member :
         {&info.AuthenticatedUserName, &info.CorvaneLogPath, &info.CloudGatewayLogPath,
          &info.UserEmail, &info.UserId, &info.Version}) {
        text += "|" + member->str();
    }
    text += info.IsLoggedIn ? "|1|" : "|0|";
    for (const Core::TevString& capability : info.Capabilities) {
        text += capability.str() + ",";
    }
    return text;
}

TEST(ReadingRules, ValuesOfTheWrongKindLeaveMembersAsTheyWere) {
    const std::string wrong =
        R"({"Errors":{"ErrorCode":2},"AuthenticatedUserName":5,"IsLoggedIn":"false",)"
        R"("UserId":["x"],"Version":{"V":1},"Capabilities":"c3","CorvaneLogPath":null})";
    EXPECT_EQ("0|||||||0|", Members(CorvaneGetSessionInfoOutput(wrong)));
    CorvaneGetSessionInfoOutput filled(FullSessionInfo);
    vanto::protocol::FromJson(filled, wrong);
    EXPECT_EQ("1|Ann||||u1|3.2|1|c1,c2,", Members(filled));
}

TEST(ReadingRules, IntegersMustBeWholeAndFitIn32Bits) {
    const auto size = [](const std::string& value) {
        return CorvaneDataset(R"({"FileSize":)" + value + "}").FileSize;
    };
    EXPECT_EQ(2147483647, size("2147483647"));
    EXPECT_EQ(-2147483647 - 1, size("-2147483648"));
    EXPECT_EQ(-7, size("-7"));
    for (const char* beyond :
         {"2147483648", "-2147483649", "9223372036854775807", "18446744073709551615",
          "123456789012345678901234567890", "1.0", "1e3", "-0.5", "1e300", "true", "\"12\""}) {
        EXPECT_EQ(0, size(beyond)) << beyond;
    }
    // The rest of the record is read all the same.
    EXPECT_EQ("n", CorvaneDataset(R"({"FileSize":4294967296,"Name":"n"})").Name);
}

TEST(ReadingRules, ListElementsOfTheWrongKindKeepTheirPlaceAsDefaults) {
    const CorvaneGetSessionInfoOutput info(
        R"({"Capabilities":["a",1,null,["x",["y"]],{"k":"v"},true,"b"]})");
    EXPECT_EQ((TextList{"a", "", "", "", "", "", "b"}), info.Capabilities);

    const CommandOutputBase output(R"({"Errors":[5,{"ErrorCode":9},null,[{"ErrorCode":3}],{}]})");
    ASSERT_EQ(5U, output.Errors.size());
    for (std::size_t i : {0U, 2U, 3U, 4U}) {
        EXPECT_EQ(0, output.Errors[i]->ErrorCode) << i;
    }
    EXPECT_EQ(9, output.Errors[1]->ErrorCode);

    CorvaneStringToObjectTypesPair pair;
    vanto::protocol::FromJson(pair, R"({"ObjectTypeList":[1,"2",3.5,4294967296,-4,{}]})");
    EXPECT_EQ((IntegerList{1, 0, 0, 0, -4, 0}), pair.ObjectTypeList);
}

TEST(ReadingRules, ARecordNeedsAnObjectWithAtLeastOneKey) {
    const auto space = [](const std::string& value) {
        return CorvaneContainerInformation(R"({"CollaborationSpace":)" + value + "}")
                   .CollaborationSpace.get() != nullptr;
    };
    EXPECT_TRUE(space(R"({"CollaborationSpaceId":"cs"})"));
    EXPECT_TRUE(space(R"({"Unrelated":0})"));
    EXPECT_FALSE(space("{}"));
    EXPECT_FALSE(space("null"));
    EXPECT_FALSE(space(R"([{"CollaborationSpaceId":"cs"}])"));
    EXPECT_FALSE(space(R"("cs")"));
}

TEST(ReadingRules, ReadingAgainReplacesListsAndKeepsWhatHasNoData) {
    CorvaneGetSessionInfoOutput info(FullSessionInfo);
    // An empty array is no data; an empty string is a string.
    vanto::protocol::FromJson(info, R"({"Capabilities":["c9"],"Errors":[],"UserId":""})");
    EXPECT_EQ("1|Ann|||||3.2|1|c9,", Members(info));
}

TEST(ReadingRules, KeysInAnyOrderUnknownOrRepeated) {
    const CorvaneGetSessionInfoOutput info(
        R"({"Capabilities":["c"],"Unknown":{"UserId":"inner","Deep":[[{"IsLoggedIn":true}]]},)"
        R"("UserId":"first","Auth\u0065nticatedUserName":"Ann","UserId":"second",)"
        R"("Version":"1","Version":null,"userid":"case matters"})");
    EXPECT_EQ("0|Ann||||second|1|0|c,", Members(info));
}

TEST(ReadingRules, EscapesAreDecodedToUtf8AndWrittenBack) {
    const CorvaneGetSessionInfoOutput info(
        R"({"UserId":"caf\u00e9 \ud83d\ude00 \"q\" \\ \/ \n","Capabilities":["\u0000"]})");
    EXPECT_EQ("caf\xC3\xA9 \xF0\x9F\x98\x80 \"q\" \\ / \n", info.UserId);
    ASSERT_EQ(1U, info.Capabilities.size());
    EXPECT_EQ(std::string(1, '\0'), info.Capabilities[0].str());

    Corvane::DataTypes::CorvaneDesignIdentifier identifier;
    identifier.Value = info.UserId;
    EXPECT_EQ(
        "{\"Value\":\"caf\xC3\xA9 \xF0\x9F\x98\x80 \\\"q\\\" \\\\ / \\n\",\"IdentifierType\":0}",
        identifier.ToJson().str());
}

// Boost.JSON's own parser as the judge: whatever a text holds, wherever in it, comes back whole.
TEST(ReadingRules, WrittenTextsParseBackToTheSameBytes) {
    Corvane::DataTypes::CorvaneDesignIdentifier identifier;
    for (const char* special : {"\x00", "\x01", "\x1F", "\"", "\\", "\x7F", "\xC3\xA9", "/"}) {
        for (std::size_t at = 0; at < 19; ++at) {
            std::string value(18, 'a');
            value.insert(at, std::string(special, std::max<std::size_t>(1, std::strlen(special))));
            identifier.Value = value;
            const Core::TevString text = identifier.ToJson();
            const boost::json::value parsed = boost::json::parse(text.str());
            EXPECT_EQ(value, std::string(parsed.at("Value").as_string().c_str(),
                                         parsed.at("Value").as_string().size()))
                << text.str();
            EXPECT_EQ(value, Corvane::DataTypes::CorvaneStringToStringPair(text).Value);
        }
    }
}

} // namespace
