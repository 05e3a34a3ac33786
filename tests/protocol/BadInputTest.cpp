// Answers that are not one valid JSON document, huge answers, and what all of it leaves behind.
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/SessionOutputs.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

using Corvane::CommandIO::DataManagement::CorvaneGetRootFoldersOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsOutput;
using Corvane::CommandIO::Generic::CorvaneGetSessionInfoOutput;
using TextList = Core::DynamicArray<Core::TevString>;

// The root folders read from `text`; reading must not throw.
TextList Folders(const std::string& text) {
    TextList folders;
    EXPECT_NO_THROW(folders = CorvaneGetRootFoldersOutput(text).RootFolders) << text;
    return folders;
}

TEST(BadInput, TextsThatAreNotOneDocumentReadAsDefaults) {
    const std::string valid = R"({"Errors":[],"RootFolders":["/a","/b"]})";
    const std::string bom = "\xEF\xBB\xBF"; // skipped once, at the start only
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
             R"({"RootFolders":["/a"]} /* x */)", R"({"RootFolders":["/a\x"]})",
             R"({"RootFolders":["/a"],"N":1e99999999999})", std::string("\0", 1) + valid,
             valid + std::string("\0", 1), bom + bom + valid, " " + bom + valid}) {
        EXPECT_TRUE(Folders(bad).empty()) << bad;
    }
}

TEST(BadInput, InvalidUtf8AndLoneSurrogatesMakeTheWholeAnswerUnreadable) {
    for (const std::string& bad : std::initializer_list<std::string>{
             std::string(R"({"RootFolders":["/a"],"Other":"x)") + "\xFF" + R"("})",
             std::string(R"({"RootFolders":["/a)") + "\xC3" + R"("]})",
             std::string(R"({"RootFolders":["/a)") + "\xED\xA0\x80" + R"("]})",
             std::string(R"({"RootFolders":["/a)") + "\xC0\xAF" + R"("]})",
             std::string(R"({"RootFolders":["/a\uD83D"]})"),
             std::string(R"({"RootFolders":["/a\uDE00x"]})"),
             std::string(R"({"RootFolders":["/a"],"Other":"\uD83D\u0041"})")}) {
        EXPECT_TRUE(Folders(bad).empty()) << bad;
    }
    EXPECT_EQ(TextList{"/\xE2\x82\xAC"}, Folders("{\"RootFolders\":[\"/\xE2\x82\xAC\"]}"));
}

TEST(BadInput, NestingBeyondTheLimitIsRejected) {
    const auto nested = [](std::size_t depth) {
        return R"({"RootFolders":["/a"],"Other":)" + std::string(depth, '[') +
               std::string(depth, ']') + "}";
    };
    EXPECT_EQ(TextList{"/a"}, Folders(nested(vanto::protocol::MaxJsonDepth - 1)));
    EXPECT_TRUE(Folders(nested(vanto::protocol::MaxJsonDepth)).empty());
    EXPECT_TRUE(Folders(nested(100000)).empty());
    std::string objects;
    for (int i = 0; i < 100000; ++i) {
        objects += R"({"RootFolders":)";
    }
    EXPECT_TRUE(Folders(objects).empty());
}

// A text with one string of 50 MB between `before` and `after`, built without further copies.
Core::TevString WithHugeString(const char* before, const char* after) {
    std::string text(before);
    text.append(std::size_t{50} << 20, 'x');
    text += after;
    return Core::TevString(std::move(text));
}

TEST(BadInput, FiftyMegabyteStringsAreReadOrPassedOver) {
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

TEST(BadInput, WrongKindsEverywhereGiveDefaults) {
    std::string text = R"({"Errors":"x","DesignRevisionInfo":[1,"a",null,)";
    text += R"({"DesignRevision":{"Id":"r"},"ContextInformation":["c"]},)";
    text += R"({"DesignRevision":[{"Id":7,"Datasets":{"x":1},"LockInfo":[],"Properties":[7]}]}]})";
    CorvaneQueryDesignRevisionsOutput output(R"({"Errors":[{"ErrorCode":1}]})");
    EXPECT_NO_THROW(vanto::protocol::FromJson(output, text));
    EXPECT_EQ(1U, output.Errors.size());
    ASSERT_EQ(5U, output.DesignRevisionInfo.size());
    EXPECT_TRUE(output.DesignRevisionInfo[3]->DesignRevision.empty());
    EXPECT_EQ(nullptr, output.DesignRevisionInfo[3]->ContextInformation);
    ASSERT_EQ(1U, output.DesignRevisionInfo[4]->DesignRevision.size());
    const auto& revision = *output.DesignRevisionInfo[4]->DesignRevision[0];
    EXPECT_EQ("", revision.Id);
    EXPECT_TRUE(revision.Datasets.empty());
    EXPECT_EQ(nullptr, revision.LockInfo);
    ASSERT_EQ(1U, revision.Properties.size());
    EXPECT_EQ("", revision.Properties[0]->Name);
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

} // namespace
