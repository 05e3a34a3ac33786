// Assembly structure and where-used queries through the real file-services interface.
#include "fileservices/SharedPaths.h"

#include <boost/json.hpp>

namespace {

using testsupport::Lines;
using testsupport::Texts;

// A child relation or where-used relation of `urn` whose document has `paths` ("" for none).
std::string Relation(const char* documentKey, const std::string& paths, const std::string& urn) {
    std::string relation = "{";
    if (!paths.empty()) {
        relation += "\"" + std::string(documentKey) + "\":{\"FilePaths\":[" + paths + "]},";
    }
    return relation + R"("RelationType":"DesignChildRelation","RelationUrn":")" + urn + "\"}";
}
std::string Child(const std::string& paths, const std::string& urn) {
    return Relation("ChildDocumentInfo", paths, urn);
}
std::string Used(const std::string& paths, const std::string& urn) {
    return Relation("RelatedDocument", paths, urn);
}

class StructureWhereUsed : public testsupport::SharedPathsTest {
protected:
    static std::string ChildrenAnswer(const std::string& childRelations) {
        return R"({"Errors":[],"ParentChildRelationInfo":[{"ChildRelationInfos":[)" +
               childRelations + "]}]}";
    }
    void AnswerChildren(const std::string& childRelations) {
        connector.Answer("GETCHILDREN", ChildrenAnswer(childRelations));
    }
    RelationMap relations{{L"/w/held.par", L"urn:held"}};
};

TEST_F(StructureWhereUsed, AddChildrenSendsOneParentWithItsChildrenInOrder) {
    const auto call = [&](const PathList& children) {
        return files->AddChildren(L"/w/top.asm", children);
    };
    EXPECT_EQ(S_OK, call({L"/w/a.par", L"/w/b.psm"}));
    EXPECT_EQ(S_OK, call({}));
    const std::string parent =
        Head("ADDCHILDREN") +
        R"("ParentChildRelationInfos":[{"ParentIdentifier":"/w/top.asm","ParentIdentifierType":0,)"
        R"("ChildRevisionInfos":[)";
    EXPECT_EQ(
        (Texts{parent +
                   R"({"Identifier":"/w/a.par","IdentifierType":0,"RelationProperties":[]},)"
                   R"({"Identifier":"/w/b.psm","IdentifierType":0,"RelationProperties":[]}]}]})",
               parent + "]}]}"}),
        connector.RequestsFor("ADDCHILDREN"));
    EXPECT_EQ(Lines{}, Take());

    connector.Answer("ADDCHILDREN", ErrorsAnswer({1}));
    EXPECT_EQ(E_FAIL, call({L"/w/a.par"}));
    EXPECT_EQ((Lines{{0, L"ERROR WHILE ADDING CHILDREN."}}), Take());
    ExpectEachException("ADDCHILDREN", E_FAIL, [&] { return call({L"/w/a.par"}); });
}

TEST_F(StructureWhereUsed, GetChildrenKeysEachRelationByItsFirstCadPath) {
    AnswerChildren(Child(R"("/w/a.txt","/w/a.asm","/w/a.par")", "urn:1") + "," +
                   Child(R"("/w/B.PAR")", "urn:2") + "," + Child(R"("/w/c.txt")", "urn:3") + "," +
                   Child("", "urn:4") + "," + Child(R"("/w/d.Psm")", "urn:5") + "," +
                   Child(R"("/w/held.par","/w/e.pwd")", "urn:6") + "," +
                   Child(R"("/w/e.pwd")", "urn:7"));
    EXPECT_EQ(S_OK, files->GetChildren(L"/w/top.asm", &relations));
    EXPECT_EQ(Head("GETCHILDREN") + R"("Identifier":"/w/top.asm","IdentifierType":0})",
              Sent("GETCHILDREN"));
    // A child without a CAD path takes the key before it, and a key already present keeps its
    // first value.
    EXPECT_EQ((RelationMap{{L"/w/a.asm", L"urn:1"},
                           {L"/w/B.PAR", L"urn:2"},
                           {L"/w/d.Psm", L"urn:5"},
                           {L"/w/held.par", L"urn:held"},
                           {L"/w/e.pwd", L"urn:7"}}),
              relations);
    EXPECT_EQ(Lines{}, Take());

    // Before any CAD path the key is empty. Only the first parent of the answer counts.
    connector.Answer("GETCHILDREN", R"({"ParentChildRelationInfo":[{"ChildRelationInfos":[)" +
                                        Child(R"("/w/readme.txt")", "urn:r") + "," +
                                        Child(R"("/w/f.par")", "urn:f") +
                                        R"(]},{"ChildRelationInfos":[)" +
                                        Child(R"("/w/g.par")", "urn:g") + "]}]}");
    relations = {};
    EXPECT_EQ(S_OK, files->GetChildren(L"/w/top.asm", &relations));
    EXPECT_EQ((RelationMap{{L"", L"urn:r"}, {L"/w/f.par", L"urn:f"}}), relations);

    const auto call = [&] { return files->GetChildren(L"/w/top.asm", &relations); };
    connector.Answer("GETCHILDREN",
                     ErrorsAnswer({1}, ChildrenAnswer(Child(R"("/w/g.par")", "urn:g"))));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING CHILDRENS."}}), Take());
    ExpectEachException("GETCHILDREN", E_FAIL, call);
    EXPECT_EQ((RelationMap{{L"", L"urn:r"}, {L"/w/f.par", L"urn:f"}}), relations);
}

TEST_F(StructureWhereUsed, RemoveChildrenSendsTheUrnsOfTheChildrenFoundThenEmptyTexts) {
    AnswerChildren(Child(R"("/w/a.par")", "urn:a") + "," + Child(R"("/w/b.par")", "urn:b"));
    const auto call = [&] {
        return files->RemoveChildren(L"/w/top.asm", {L"/w/x.par", L"/w/b.par", L"/w/A.PAR"});
    };
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ((Texts{"GETCHILDREN", "REMOVECHILDREN"}), connector.CommandsSent());
    EXPECT_EQ(Head("REMOVECHILDREN") + R"("RelationURNs":["urn:b","",""]})",
              Sent("REMOVECHILDREN"));
    EXPECT_EQ(Lines{}, Take());

    // A failed look-up of the children finds none, and still one empty text goes per child.
    connector.Answer("GETCHILDREN",
                     ErrorsAnswer({1}, ChildrenAnswer(Child(R"("/w/b.par")", "urn:b"))));
    connector.Answer("REMOVECHILDREN", ErrorsAnswer({1}));
    EXPECT_EQ(E_FAIL, call());
    EXPECT_EQ(Head("REMOVECHILDREN") + R"("RelationURNs":["","",""]})",
              connector.executeRequests.back());
    EXPECT_EQ(
        (Lines{{0, L"ERROR WHILE GETTING CHILDRENS."}, {0, L"ERROR WHILE REMOVING CHILDRENS."}}),
        Take());
    ExpectEachException("REMOVECHILDREN", E_FAIL, call, {{0, L"ERROR WHILE GETTING CHILDRENS."}});
}

TEST_F(StructureWhereUsed, GetCorvaneWUResultsQueriesEachPathUntilOneFails) {
    // Each path is answered by its own text; "/w/bad.par" with an error and a drawing of its own.
    connector.Answer("QUERYPRIMARYOBJECTS", [](const std::string& request) -> std::string {
        const std::string path(boost::json::parse(request).at("Identifier").as_string());
        if (path == "/w/bad.par") {
            return ErrorsAnswer({1}, R"({"QueryRelationInfos":[{"Relations":[)" +
                                         Used(R"("/w/bad.dft")", "urn:bad") + "]}]}");
        }
        return R"({"QueryRelationInfos":[{"Relations":[)" +
               Used(R"("/w/dwg1.dft","/w/dwg2.dft")", "urn:" + path + ":1") + "," +
               Used("", "urn:" + path + ":2") + "," + Used(R"("/w/held.par")", "urn:held2") +
               R"(]},{"Relations":[)" + Used("", "urn:" + path + ":3") + "]}]}";
    });
    EXPECT_EQ(S_OK, files->GetCorvaneWUResults({L"/w/a.par"}, &relations, true));
    // The related document's last path is the key; a relation without a related document keeps
    // the key of the one before it within its query, which starts empty. The relation type
    // answered does not filter.
    EXPECT_EQ((RelationMap{{L"", L"urn:/w/a.par:3"},
                           {L"/w/dwg2.dft", L"urn:/w/a.par:1"},
                           {L"/w/held.par", L"urn:held"}}),
              relations);
    EXPECT_EQ(Head("QUERYPRIMARYOBJECTS") +
                  R"("Identifier":"/w/a.par","IdentifierType":0,"RelationTypes":["DrawingOf"]})",
              Sent("QUERYPRIMARYOBJECTS"));

    // An error ends the walk: what came before stays, the paths after it are not asked about.
    connector.executeRequests.clear();
    relations = {};
    EXPECT_EQ(E_FAIL, files->GetCorvaneWUResults({L"/w/b.par", L"/w/bad.par", L"/w/c.par"},
                                                 &relations, false));
    EXPECT_EQ((Lines{{0, L"ERROR WHILE GETTING WHERE USED RESULTS."}}), Take());
    EXPECT_EQ((RelationMap{{L"", L"urn:/w/b.par:3"},
                           {L"/w/dwg2.dft", L"urn:/w/b.par:1"},
                           {L"/w/held.par", L"urn:held2"}}),
              relations);
    const Texts sent = connector.RequestsFor("QUERYPRIMARYOBJECTS");
    ASSERT_EQ(2u, sent.size());
    EXPECT_EQ(Head("QUERYPRIMARYOBJECTS") +
                  R"("Identifier":"/w/bad.par","IdentifierType":0,)"
                  R"("RelationTypes":["DrawingOf","DesignChildRelation"]})",
              sent[1]);

    const auto call = [&] { return files->GetCorvaneWUResults({L"/w/c.par"}, &relations, false); };
    ExpectEachException("QUERYPRIMARYOBJECTS", E_FAIL, call);
    // No paths, no question.
    EXPECT_EQ(S_OK, files->GetCorvaneWUResults({}, &relations, false));
    EXPECT_EQ(5u, connector.executeRequests.size());
    EXPECT_EQ(3u, relations.size());
}

} // namespace
