// What the reader takes from an answer: valid JSON that is not quite what a record expects, texts
// that are not one valid JSON document, huge answers, and what all of it leaves behind.
#include "protocol/RecordIO.h"
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/SessionOutputs.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Corvane::CommandIO::CommandOutputBase;
using Corvane::CommandIO::DataManagement::CorvaneGetRootFoldersOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsOutput;
using Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput;
using Corvane::DataTypes::CorvaneContainerInformation;
using Corvane::DataTypes::CorvaneDataset;
using Corvane::DataTypes::CorvaneStringToObjectTypesPair;
using TextList = Core::DynamicArray<Core::TevString>;
using IntegerList = Core::DynamicArray<std::int32_t>;

constexpr const char* FullSessionInfo =
    R"({"Errors":[{"ErrorCode":1}],"AuthenticatedUserName":"Ann","IsLoggedIn":true,)"
    R"("UserId":"u1","Version":"3.2","Capabilities":["c1","c2"]})";

constexpr const char* WrongKinds =
    R"({"Errors":{"ErrorCode":2},"AuthenticatedUserName":5,"IsLoggedIn":"false",)"
    R"("UserId":["x"],"Version":{"V":1},"Capabilities":"c3","CorvaneLogPath":null})";

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

// Each text read into a fresh record or, where `intoFull`, into one read from FullSessionInfo.
TEST(ReadingRules, SessionInformationReadFromTextsThatAreNotQuiteWhatItExpects) {
    const std::tuple<bool, std::string, std::string> cases[] = {
        // Values of the wrong kind leave members as they were.
        {false, WrongKinds, "0|||||||0|"},
        {true, WrongKinds, "1|Ann||||u1|3.2|1|c1,c2,"},
        // List elements of the wrong kind keep their place as defaults.
        {false, R"({"Capabilities":["a",1,null,["x",["y"]],{"k":"v"},true,"b"]})",
         "0|||||||0|a,,,,,,b,"},
        // Keys in any order, unknown or repeated; the last one read wins, case matters.
        {false,
         R"({"Capabilities":["c"],"Unknown":{"UserId":"inner","Deep":[[{"IsLoggedIn":true}]]},)"
         R"("UserId":"first","Auth\u0065nticatedUserName":"Ann","UserId":"second",)"
         R"("Version":"1","Version":null,"userid":"case matters"})",
         "0|Ann||||second|1|0|c,"},
        // Reading again replaces lists and keeps what has no data: an empty array is no data, an
        // empty string is a string.
        {true, R"({"Capabilities":["c9"],"Errors":[],"UserId":""})", "1|Ann|||||3.2|1|c9,"},
        // Escapes are decoded to UTF-8.
        {false, R"({"UserId":"caf\u00e9 \ud83d\ude00 \"q\" \\ \/ \n","Capabilities":["\u0000"]})",
         "0|||||caf\xC3\xA9 \xF0\x9F\x98\x80 \"q\" \\ / \n||0|" + std::string(1, '\0') + ","}};
    for (const auto& [intoFull, text, members] : cases) {
        CorvaneGetSessionInfoOutput info(intoFull ? FullSessionInfo : "{}");
        vanto::protocol::FromJson(info, text);
        EXPECT_EQ(members, Members(info)) << text;
    }
}

// A key names a member only when every byte agrees: keys that differ from a member's name in one
// byte (first, last, or inside a long name between its first and last eight) or in length.
TEST(ReadingRules, KeysNameAMemberOnlyWhenEveryByteAgrees) {
    const std::pair<std::string, std::string> cases[] = {
        {R"({"AuthenticatedUserName":"a","UserId":"u","Version":"v"})", "0|a||||u|v|0|"},
        {R"({"AuthentiXatedUserName":"a","UserIdd":"u","Versio":"v"})", "0|||||||0|"},
        {R"({"ButhenticatedUserName":"a","UserIc":"u","Wersion":"v"})", "0|||||||0|"},
        {R"({"AuthenticatedUserNamf":"a","UsexId":"u","Vers1on":"v"})", "0|||||||0|"},
        {R"({"AuthenticatedUserNam":"a","AuthenticatedUserNamee":"b","":"c"})", "0|||||||0|"},
    };
    for (const auto& [text, members] : cases) {
        EXPECT_EQ(members, Members(CorvaneGetSessionInfoOutput(text))) << text;
    }
}

TEST(ReadingRules, IntegersMustBeWholeAndFitIn32Bits) {
    const std::pair<const char*, std::int32_t> cases[] = {{"2147483647", 2147483647},
                                                          {"-2147483648", -2147483647 - 1},
                                                          {"2147483648", 0},
                                                          {"-2147483649", 0},
                                                          {"18446744073709551615", 0},
                                                          {"123456789012345678901234567890", 0},
                                                          {"1.0", 0},
                                                          {"true", 0},
                                                          {"\"12\"", 0}};
    for (const auto& [value, expected] : cases) {
        // The rest of the record is read all the same.
        const CorvaneDataset dataset(R"({"FileSize":)" + std::string(value) + R"(,"Name":"n"})");
        EXPECT_EQ(expected, dataset.FileSize) << value;
        EXPECT_EQ("n", dataset.Name) << value;
    }
}

TEST(ReadingRules, ErrorsAndIntegerListElementsOfTheWrongKindKeepTheirPlaceAsDefaults) {
    const CommandOutputBase output(R"({"Errors":[5,{"ErrorCode":9},null,[{"ErrorCode":3}],{}]})");
    std::vector<std::int32_t> codes;
    for (const auto& error : output.Errors) {
        codes.push_back(error->ErrorCode);
    }
    EXPECT_EQ((std::vector<std::int32_t>{0, 9, 0, 0, 0}), codes);

    CorvaneStringToObjectTypesPair pair;
    vanto::protocol::FromJson(pair, R"({"ObjectTypeList":[1,"2",3.5,4294967296,-4,{}]})");
    EXPECT_EQ((IntegerList{1, 0, 0, 0, -4, 0}), pair.ObjectTypeList);
}

TEST(ReadingRules, ARecordNeedsAnObjectWithAtLeastOneKey) {
    const auto space = [](const std::string& value) {
        return CorvaneContainerInformation(R"({"CollaborationSpace":)" + value + "}")
                   .CollaborationSpace.get() != nullptr;
    };
    EXPECT_TRUE(space(R"({"CollaborationSpaceId":"cs"})") && space(R"({"Unrelated":0})"));
    for (const char* none : {"{}", "null", R"([{"CollaborationSpaceId":"cs"}])", R"("cs")"}) {
        EXPECT_FALSE(space(none)) << none;
    }
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

// The root folders read from `text`; reading must not throw.
TextList Folders(const std::string& text) {
    TextList folders;
    EXPECT_NO_THROW(folders = CorvaneGetRootFoldersOutput(text).RootFolders) << text;
    return folders;
}

TEST(BadInput, TextsThatAreNotOneDocumentReadAsDefaults) {
    const std::string valid = R"({"Errors":[],"RootFolders":["/a","/b"]})";
    const std::string bom = "\xEF\xBB\xBF"; // skipped once, at the start only
    const auto in = [](const char* text) {
        return R"({"RootFolders":["/a)" + std::string(text) + R"("]})";
    };
    ASSERT_EQ((TextList{"/a", "/b"}), Folders(valid));
    EXPECT_EQ((TextList{"/a", "/b"}), Folders(" \r\n\t" + valid + " \n"));
    EXPECT_EQ((TextList{"/a", "/b"}), Folders(bom + valid));
    for (std::size_t cut = 0; cut < valid.size(); ++cut) {
        EXPECT_TRUE(Folders(valid.substr(0, cut)).empty()) << cut;
    }
    for (const std::string& bad : std::initializer_list<std::string>{
             "not json", valid + "x", valid + valid, valid + ",", "[" + valid + "]", R"("/a")",
             "null", "// note\n" + valid, R"({"RootFolders":["/a",]})",
             R"({"RootFolders":["/a"],})", R"({'RootFolders':['/a']})",
             R"({"RootFolders":["/a"]} /* x */)", in("\\x"),
             R"({"RootFolders":["/a"],"N":1e99999999999})", std::string("\0", 1) + valid,
             valid + std::string("\0", 1), bom + bom + valid, " " + bom + valid,
             // Invalid UTF-8 and lone surrogates anywhere make the whole answer unreadable.
             std::string(R"({"RootFolders":["/a"],"Other":"x)") + "\xFF" + R"("})", in("\xC3"),
             in("\xED\xA0\x80"), in("\xC0\xAF"), in("\\uD83D"), in("\\uDE00x"),
             R"({"RootFolders":["/a"],"Other":"\uD83D\u0041"})"}) {
        EXPECT_TRUE(Folders(bad).empty()) << bad;
    }
    EXPECT_EQ(TextList{"/a\xE2\x82\xAC"}, Folders(in("\xE2\x82\xAC")));
}

TEST(BadInput, NestingBeyondTheLimitIsRejected) {
    const auto nested = [](std::size_t depth) {
        return R"({"RootFolders":["/a"],"Other":)" + std::string(depth, '[') +
               std::string(depth, ']') + "}";
    };
    EXPECT_EQ(TextList{"/a"}, Folders(nested(vanto::protocol::MaxJsonDepth - 1)));
    EXPECT_TRUE(Folders(nested(vanto::protocol::MaxJsonDepth)).empty());
    EXPECT_TRUE(Folders(nested(100000)).empty());
}

TEST(BadInput, FiftyMegabyteStringsAreReadOrPassedOver) {
    // A text with one string of 50 MB between `before` and `after`, built without further copies.
    const auto WithHugeString = [](const char* before, const char* after) {
        std::string text(before);
        text.append(std::size_t{50} << 20, 'x');
        return Core::TevString(std::move(text += after));
    };
    const CorvaneGetRootFoldersOutput kept(WithHugeString(R"({"RootFolders":["/a",")", R"("]})"));
    ASSERT_EQ(2U, kept.RootFolders.size());
    EXPECT_EQ(std::size_t{50} << 20, kept.RootFolders[1].size());
    const CorvaneGetRootFoldersOutput skipped(
        WithHugeString(R"({"Skipped":")", R"(","RootFolders":["/a"]})"));
    EXPECT_EQ(TextList{"/a"}, skipped.RootFolders);
    // A key longer than any member's names no member, escaped (read in parts) or not.
    std::string escaped;
    for (int i = 0; i < 20000; ++i) {
        escaped += "\\u0052";
    }
    EXPECT_EQ(TextList{"/a"}, Folders(R"({")" + escaped + R"(":["/z"],"RootFolders":["/a"]})"));
    EXPECT_EQ(TextList{"/a"},
              Folders(R"({")" + std::string(100000, 'R') + R"(":["/z"],"RootFolders":["/a"]})"));
}

// A deeply nested answer, cut at every byte: each half-built record is released.
TEST(BadInput, NothingIsLeftBehindWhateverTheTextIs) {
    const std::string answer =
        R"({"Errors":[{"ErrorCode":3,"Ids":["i"]}],"DesignRevisionInfo":[{"DesignRevision":[)"
        R"({"Id":"r1","Properties":[{"Name":"P","PropertyValues":["v\u00e9"]}],)"
        R"("Datasets":[{"Name":"d","AdhocProperties":[{"Name":"A"}],"FileSize":5}],)"
        R"("LockInfo":{"LockedBy":"Ann"}}],"ContextInformation":{"ContainerId":"p"}}]})";
    const auto before = Core::MemoryManager::LiveAllocations();
    {
        const CorvaneQueryDesignRevisionsOutput output(answer);
        ASSERT_EQ(1U, output.DesignRevisionInfo.size());
        EXPECT_GT(Core::MemoryManager::LiveAllocations(), before);
    }
    EXPECT_EQ(before, Core::MemoryManager::LiveAllocations());
    for (std::size_t cut = 0; cut < answer.size(); ++cut) {
        const CorvaneQueryDesignRevisionsOutput output(answer.substr(0, cut) + "]");
        EXPECT_TRUE(output.Errors.empty() && output.DesignRevisionInfo.empty()) << cut;
        EXPECT_EQ(before, Core::MemoryManager::LiveAllocations()) << cut;
    }
    {
        CorvaneGetSessionInfoOutput reread(answer);
        vanto::protocol::FromJson(reread, answer);
        EXPECT_EQ(1U, reread.Errors.size());
    }
    EXPECT_EQ(before, Core::MemoryManager::LiveAllocations());
}

// Keys the connector spells irregularly; every record's regular keys, order and spellings are
// checked against the sample exchanges (AllocationFailureTest).
TEST(CommandRecords, IrregularKeysAreReadOnlyAsTheConnectorSpellsThem) {
    using namespace Corvane::CommandIO::DataManagement::MCAD;
    const Corvane::CommandIO::DataManagement::CorvaneGetAvailableContainersOutput containers(
        R"({"ContainerInformation":[{"ContainerUrn":"urn:1"},{"ContainerURN":"urn:2"}]})");
    ASSERT_EQ(2U, containers.ContainerInformation.size());
    EXPECT_EQ("urn:1", containers.ContainerInformation[0]->ContainerUrn);
    EXPECT_EQ("", containers.ContainerInformation[1]->ContainerUrn);

    const Corvane::DataTypes::CorvaneContextInformation context(
        R"({"ContainerURN":"urn:3","ContainerUrn":"no"})");
    EXPECT_EQ("urn:3", context.ContainerURN);

    const CorvaneGetNextRevisionIdOutput next(
        R"({"NextRevisionIdInfo":[{"RevisionFilepath":"/a.prt"},{"RevisionFilePath":"/b.prt"}]})");
    ASSERT_EQ(2U, next.NextRevisionIdInfo.size());
    EXPECT_EQ("/a.prt", next.NextRevisionIdInfo[0]->RevisionFilepath);
    EXPECT_EQ("", next.NextRevisionIdInfo[1]->RevisionFilepath);
}

// Read, then written back as the log shows it: the answer's order, defaults for what it left out.
TEST(CommandRecords, PairListsKeepTheAnswersOrderAndMissingKeysReadAsDefaults) {
    using namespace Corvane::CommandIO::DataManagement::MCAD;
    const Corvane::CommandIO::DataManagement::CorvaneCheckNewerVersionOnCloudOutput newer(
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
