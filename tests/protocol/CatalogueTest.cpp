// Every command the component may send (the list in protocol/Catalogue.h; the frame refuses at
// compile time to send any other) has what the rest of the tree needs of it: a sample exchange
// for the allocation test and the fuzzers, and a slot that sends it for the frame's walk and the
// fault injection. The emulator's table is held to the same list in its own tests.
#include "protocol/Catalogue.h"
#include "fileservices/SlotTable.h"
#include "support/SampleRecords.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace testsupport::slots;

TEST(Catalogue, EveryCommandHasItsSampleExchangeAndASlotThatSendsIt) {
    std::set<std::string> samples;
    testsupport::ForEachSample([&](const auto& sample) { samples.insert(sample.name); });
    std::set<std::string> sent;
    for (const auto& methods : {FileServiceMethods(), SessionMethods()}) {
        for (const Method& method : methods) {
            for (const Site& site : method.sites) {
                sent.insert(site.call);
            }
        }
    }
    int commands = 0;
    vanto::protocol::ForEachCommand(vanto::protocol::Catalogue{}, [&](auto tag) {
        const std::string name = decltype(tag)::Type::CommandName;
        ++commands;
        EXPECT_EQ(1U, samples.count(name))
            << name << ": no sample in tests/support/SampleRecords.h";
        EXPECT_EQ(1U, sent.count("Execute " + name))
            << name << ": no slot of tests/fileservices/SlotTable.h sends it";
    });
    EXPECT_EQ(21, commands);
}

} // namespace
