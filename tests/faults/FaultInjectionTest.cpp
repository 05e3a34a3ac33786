// Every method of the real session and file-services interfaces, with each connector call it
// makes failing in turn, once with each kind of exception: the method's result and the line it
// writes are those its design gives for that call, later calls are made or not as it says,
// nothing leaks from the core allocator, and no exception reaches the caller.
#include "fileservices/SlotTable.h"

#include <gtest/gtest.h>

#include <iostream>

namespace {

using namespace testsupport::slots;
using Corvane::FakeConnector;
using Failure = FakeConnector::Failure;

constexpr const char* Message = "connector gone";

std::wstring ExpectedLine(Says says, Failure failure) {
    const std::wstring text =
        failure == Failure::Foreign ? L"unknown exception" : L"connector gone";
    if (says == Says::RegisterLine && failure == Failure::Communication) {
        return L"Exception occurred in API : connector gone ";
    }
    if (says == Says::DeregisterLine) {
        return L"Failure to deregister from Corvane - exception from call : " + text;
    }
    if (says == Says::LaunchLine) {
        return L"Corvane failed to start with exception: " + text;
    }
    return L"Corvane session is not a valid session - exception from Execute call : " + text;
}

// Walks the methods; returns the number of call sites covered.
int WalkEveryCallSite(const std::vector<Method>& methods) {
    int sites = 0;
    for (const Method& method : methods) {
        SCOPED_TRACE(method.name);
        const MethodRun clean = CleanRun(method);
        for (std::size_t index = 0; index < method.sites.size(); ++index) {
            const Site& site = method.sites[index];
            ++sites;
            for (Failure failure : {Failure::Communication, Failure::Standard, Failure::Foreign}) {
                SCOPED_TRACE("call " + std::to_string(index) + " (" + site.call + "), failure " +
                             std::to_string(static_cast<int>(failure)));
                const MethodRun failed = RunMethod(method, [&](FakeConnector& connector) {
                    connector.FailCall(index, failure, Message);
                });
                EXPECT_FALSE(failed.escaped) << "an exception crossed the interface";
                EXPECT_EQ(site.result, failed.result);
                const std::wstring line = ExpectedLine(site.says, failure);
                EXPECT_EQ(1, std::count(failed.errors.begin(), failed.errors.end(), line))
                    << GUserText(line).Narrow();
                EXPECT_EQ(site.goesOn ? clean.calls.size() : index + 1, failed.calls.size());
                EXPECT_EQ(0, failed.leaked);
            }
        }
    }
    return sites;
}

TEST(FaultInjection, EveryConnectorCallOfEveryMethodFailsWithEachKindOfException) {
    const int fileServiceSites = WalkEveryCallSite(FileServiceMethods());
    const int sessionSites = WalkEveryCallSite(SessionMethods());
    std::cout << "fault injection: " << fileServiceSites << " file-service and " << sessionSites
              << " session call sites, three exception kinds each\n";
    ::testing::Test::RecordProperty("call_sites", fileServiceSites + sessionSites);
    EXPECT_EQ(32, fileServiceSites);
    EXPECT_EQ(13, sessionSites);
}

} // namespace
