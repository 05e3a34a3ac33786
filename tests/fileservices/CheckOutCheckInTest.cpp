// Check-out, check-in and lock status through the interface: the requests, the log, the result on
// each path and what becomes of the caller's map or list.
#include "fileservices/CheckOutCheckIn.h"
#include "fileservices/FileServicesFixture.h"

namespace {

using testsupport::FileServicesTest;
using testsupport::Lines;
using testsupport::Texts;

class CheckOutCheckIn : public FileServicesTest {
protected:
    CheckOutCheckIn() { connector.Answer("GETSESSIONINFO", R"({"AuthenticatedUserName":"ann"})"); }
    // What asking for the signed-in user writes.
    static Lines UserLines() {
        return {{2, L"Authenticated User Name is : ann"},
                {2, L"Corvane Log Path is : "},
                {2, L"Cloud Gateway Log Path is : "}};
    }
    static Lines Then(Lines lines, const Lines& more) {
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    }
    static FileLockStatus HeldBy(const wchar_t* holder, bool byMe = false) {
        return {true, byMe, false, holder};
    }
};

TEST_F(CheckOutCheckIn, CheckOutLocksTheFreeFilesAndMarksWhoHoldsThem) {
    FileLockStatusMap map{{L"/w/b.par", HeldBy(L"bob")},
                          {L"/w/\u00e9.par", {}},
                          {L"/w/A.asm", {}},
                          {L"/w/mine.psm", HeldBy(L"ann", true)}};
    // The holder's name differs from the user's in case only; a name the map lacks is passed over.
    const std::string answer = R"({"Errors":[],"Status":[)"
                               R"({"DesignIdentifier":"/w/a.ASM","LockedBy":"ANN"},)"
                               R"({"DesignIdentifier":"/w/\u00e9.par","LockedBy":"Cl\u00e9o"},)"
                               R"({"DesignIdentifier":"/w/zzz.par","LockedBy":"ann"}]})";
    connector.Answer("LOCKDESIGNREVISIONS", answer);
    EXPECT_EQ(S_OK, files->CheckOut(&map));

    const std::string request =
        R"({"Command":"LOCKDESIGNREVISIONS","SessionId":"s-1","Version":1,"DesignIdentifiers":[)"
        R"({"Value":"/w/A.asm","IdentifierType":0},{"Value":"/w/)"
        "\xC3\xA9"
        R"(.par","IdentifierType":0}],)"
        R"("TimeToLive":-1})";
    EXPECT_EQ((Texts{"GETSESSIONINFO", "LOCKDESIGNREVISIONS"}), connector.CommandsSent());
    EXPECT_EQ(request, Sent("LOCKDESIGNREVISIONS"));
    EXPECT_EQ(
        Then(UserLines(),
             {{2, L"File Name : /w/A.asm"},
              {2, L"File Name : /w/b.par, is not proceeded for lock call since it is checked out "
                  L"to other user : bob"},
              {2, L"File Name : /w/mine.psm, is not proceeded for lock call since it is checked "
                  L"out to other user : ann"},
              {2, L"File Name : /w/\u00e9.par"},
              {2, L"LockDesignRevisions Input: " + GUserText(std::string_view(request)).wstr()},
              {2, L"LockDesignRevisions Output: " + GUserText(std::string_view(answer)).wstr()},
              {2, L"File Checkout successful."}}),
        Take());
    // How the answer lands in the map is AnswerMapping's concern; one file shows it was read.
    EXPECT_EQ(L"ANN", map.at(L"/w/A.asm").checkedOutBy.wstr());
}

TEST_F(CheckOutCheckIn, CheckOutPassesOverLockedObjectsButFailsOnOtherErrors) {
    const auto checkOut = [this](const std::string& errors, FileLockStatusMap& map) {
        connector.Answer("LOCKDESIGNREVISIONS",
                         R"({"Errors":[)" + errors +
                             R"(],"Status":[)"
                             R"({"DesignIdentifier":"/w/a.par","LockedBy":"ann"},)"
                             R"({"DesignIdentifier":"/w/b.par","LockedBy":"ann"}]})");
        const HRESULT result = files->CheckOut(&map);
        Lines lines = Take();
        EXPECT_EQ(L"File Checkout successful.", lines.at(lines.size() - 2).second);
        EXPECT_EQ((testsupport::Line{0, L"Error while checkout."}), lines.back());
        return result;
    };
    // Locked by somebody else: the call still succeeds; any other code fails it.
    FileLockStatusMap map{{L"/w/a.par", {}}, {L"/w/b.par", {}}};
    EXPECT_EQ(S_OK, checkOut(R"({"ErrorCode":13,"Ids":["/w/c.par"]})", map));
    map = {{L"/w/a.par", {}}};
    EXPECT_EQ(E_FAIL,
              checkOut(R"({"ErrorCode":13,"Ids":["/w/a.par"]},{"ErrorCode":12,"Ids":[]})", map));
}

TEST_F(CheckOutCheckIn, CheckOutWithNothingToLockSendsNoLockCommand) {
    FileLockStatusMap empty;
    EXPECT_EQ(S_OK, files->CheckOut(&empty));
    FileLockStatusMap held{{L"/w/a.par", HeldBy(L"bob")}};
    EXPECT_EQ(S_OK, files->CheckOut(&held));
    EXPECT_EQ((Texts{"GETSESSIONINFO", "GETSESSIONINFO"}), connector.CommandsSent());
    // Only the user lines and the skip line: no answer came, so no success line either.
    EXPECT_EQ(Then(Then(UserLines(), UserLines()),
                   {{2, L"File Name : /w/a.par, is not proceeded for lock call since it is "
                        L"checked out to other user : bob"}}),
              Take());
    EXPECT_EQ(L"bob", held.at(L"/w/a.par").checkedOutBy.wstr());
}

TEST_F(CheckOutCheckIn, CheckInSendsEveryEntryAndUpdatesTheFirstOfEachName) {
    FileCheckInList list;
    EXPECT_EQ(S_OK, files->CheckIn(&list));
    EXPECT_EQ(R"({"Command":"UNLOCKDESIGNREVISIONS","SessionId":"s-1","Version":1,)"
              R"("DesignIdentifiers":[]})",
              Sent("UNLOCKDESIGNREVISIONS"));
    connector.executeRequests.clear();
    Take();

    list = {{L"/w/a.par", 0, L""}, {L"/w/b.par", 0, L""}, {L"/w/a.par", 0, L""}};
    // After b.par the next entry is the second a.par, which is not the first of its name.
    const std::string answer = R"({"Status":[{"DesignIdentifier":"/w/a.par","LockedBy":"eve",)"
                               R"("ErrorCode":12},{"DesignIdentifier":"/W/B.PAR","ErrorCode":7},)"
                               R"({"DesignIdentifier":"/w/b.par","ErrorCode":5},)"
                               R"({"DesignIdentifier":"/w/a.par","LockedBy":"b\u00f6b",)"
                               R"("ErrorCode":9}]})";
    connector.Answer("UNLOCKDESIGNREVISIONS", answer);
    EXPECT_EQ(S_OK, files->CheckIn(&list));
    const std::string request =
        R"({"Command":"UNLOCKDESIGNREVISIONS","SessionId":"s-1","Version":1,"DesignIdentifiers":[)"
        R"({"Value":"/w/a.par","IdentifierType":0},{"Value":"/w/b.par","IdentifierType":0},)"
        R"({"Value":"/w/a.par","IdentifierType":0}]})";
    EXPECT_EQ(request, Sent("UNLOCKDESIGNREVISIONS"));
    EXPECT_EQ(
        (Lines{{2, L"File Name : /w/a.par"},
               {2, L"File Name : /w/b.par"},
               {2, L"File Name : /w/a.par"},
               {2, L"UnLockDesignRevisions Input: " + GUserText(std::string_view(request)).wstr()},
               {2, L"UnLockDesignRevisions Output: " + GUserText(std::string_view(answer)).wstr()},
               {2, L"Check-in successful. No errors found."}}),
        Take());
    EXPECT_EQ(9, list[0].errorCode);
}

TEST_F(CheckOutCheckIn, CheckInWithErrorsLeavesTheListAsItCame) {
    connector.Answer(
        "UNLOCKDESIGNREVISIONS",
        R"({"Errors":[{"ErrorCode":12},{"ErrorCode":3}],)"
        R"("Status":[{"DesignIdentifier":"/w/a.par","LockedBy":"bob","ErrorCode":12}]})");
    FileCheckInList list{{L"/w/a.par", 0, L""}};
    EXPECT_EQ(E_FAIL, files->CheckIn(&list));
    const Lines lines = Take();
    EXPECT_EQ((testsupport::Line{0, L"Error while check-in."}), lines.back());
    EXPECT_EQ(4u, lines.size()); // no LogErrors lines
    EXPECT_EQ(0, list[0].errorCode);
    EXPECT_TRUE(list[0].lockedBy.IsEmpty());
}

// Which properties give the lock is ApplyLockedBy's table; here the map's look-up (ignoring case,
// passing over files it does not hold) and the newer-version question per file found.
TEST_F(CheckOutCheckIn, LockStatusAsksForTheMapsFilesAndUpdatesThoseFound) {
    FileLockStatusMap map{{L"/w/a.par", {}}, {L"/w/b.par", {}}};
    connector.Answer(
        "GETPROPERTIES",
        R"({"FilePropertiesArray":[)"
        R"({"FilePath":"/W/A.PAR","ObjectTypeToPropertiesArray":[{"ObjectType":1,"Properties":[)"
        R"({"Name":"LockedBy","PropertyValues":["Ann"]}]}]},)"
        R"({"FilePath":"/w/zzz.par","ObjectTypeToPropertiesArray":[]}]})");
    EXPECT_EQ(S_OK, files->GetCheckOutStatus(&map, false));
    EXPECT_EQ((Texts{"GETSESSIONINFO", "GETPROPERTIES"}), connector.CommandsSent());
    EXPECT_EQ(R"({"Command":"GETPROPERTIES","SessionId":"s-1","Version":1,)"
              R"("FilePathToObjectTypesArray":[{"Key":"/w/a.par","ObjectTypeList":[0,2,1]},)"
              R"({"Key":"/w/b.par","ObjectTypeList":[0,2,1]}]})",
              Sent("GETPROPERTIES"));
    EXPECT_TRUE(map.at(L"/w/a.par").isCheckedOutByCurrentUser);
    EXPECT_EQ(2u, map.size());
    connector.executeRequests.clear();
    EXPECT_EQ(S_OK, files->GetCheckOutStatus(&map, true));
    EXPECT_EQ(1u, connector.RequestsFor("CHECKFORNEWERVERSION").size());
}

TEST_F(CheckOutCheckIn, LockStatusGivesBackAFailedPropertiesResultUntouched) {
    connector.Answer("GETPROPERTIES", R"({"Errors":[{"ErrorCode":8}],"FilePropertiesArray":[)"
                                      R"({"FilePath":"/w/a.par","ObjectTypeToPropertiesArray":[)"
                                      R"({"ObjectType":1,"Properties":[{"Name":"LockedBy",)"
                                      R"("PropertyValues":["bob"]}]}]}]})");
    FileLockStatusMap map{{L"/w/a.par", {}}};
    EXPECT_EQ(E_FAIL, files->GetCheckOutStatus(&map, true));
    EXPECT_FALSE(map.at(L"/w/a.par").isCheckedOut);
    EXPECT_EQ(Then(UserLines(), {{0, L"Error getting file properties."}}), Take());
    EXPECT_EQ((Texts{"GETSESSIONINFO", "GETPROPERTIES"}), connector.CommandsSent());
}

} // namespace
