// The command and data records as they come over the wire: keys the connector spells irregularly,
// pair lists in the order of the answer, and missing keys. Every record's regular keys, order and
// spellings are checked against the sample exchanges (AllocationFailureTest).
#include "protocol/RecordIO.h"
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::DataTypes;

TEST(CommandRecords, IrregularKeysAreReadOnlyAsTheConnectorSpellsThem) {
    const CorvaneGetAvailableContainersOutput containers(
        R"({"ContainerInformation":[{"ContainerUrn":"urn:1"},{"ContainerURN":"urn:2"}]})");
    ASSERT_EQ(2U, containers.ContainerInformation.size());
    EXPECT_EQ("urn:1", containers.ContainerInformation[0]->ContainerUrn);
    EXPECT_EQ("", containers.ContainerInformation[1]->ContainerUrn);

    const CorvaneContextInformation context(R"({"ContainerURN":"urn:3","ContainerUrn":"no"})");
    EXPECT_EQ("urn:3", context.ContainerURN);

    const CorvaneGetNextRevisionIdOutput next(
        R"({"NextRevisionIdInfo":[{"RevisionFilepath":"/a.prt"},{"RevisionFilePath":"/b.prt"}]})");
    ASSERT_EQ(2U, next.NextRevisionIdInfo.size());
    EXPECT_EQ("/a.prt", next.NextRevisionIdInfo[0]->RevisionFilepath);
    EXPECT_EQ("", next.NextRevisionIdInfo[1]->RevisionFilepath);
}

// Read, then written back as the log shows it: the answer's order, defaults for what it left out.
TEST(CommandRecords, PairListsKeepTheAnswersOrderAndMissingKeysReadAsDefaults) {
    const CorvaneCheckNewerVersionOnCloudOutput newer(
        R"({"IdentifierToNewerVersionId":[{"Key":"b","Value":"7"},{"Key":"a","Value":"3"}],)"
        R"("IdentifierToHasNewerVersionInCloud":[{"Key":"b","Value":true},{"Key":"a"}]})");
    EXPECT_EQ(R"({"Errors":[],"IdentifierToNewerVersionId":[{"Key":"b","Value":"7"},)"
              R"({"Key":"a","Value":"3"}],"IdentifierToHasNewerVersionInCloud":[)"
              R"({"Key":"b","Value":true},{"Key":"a","Value":false}]})",
              vanto::protocol::WriteJson(newer).str());
    const CorvaneRemoveChildrenOutput removed(
        R"({"Errors":[{"ErrorCode":5,"Ids":["a","b"]},{"Ids":["c"]}],"Extra":[1,{}]})");
    EXPECT_EQ(R"({"Errors":[{"ErrorCode":5,"Ids":["a","b"]},{"ErrorCode":0,"Ids":["c"]}]})",
              removed.ToJson().str());
}

} // namespace
