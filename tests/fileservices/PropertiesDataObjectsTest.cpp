// Properties of files and keyed data objects through the real file-services interface.
#include "fileservices/SharedPaths.h"

#include <vector>

namespace {

using testsupport::Lines;

constexpr const wchar_t* NoErrorsFound = L"\nNo Errors Found!\n";

constexpr const char* PropertiesAnswer =
    R"({"Errors":[],"FilePropertiesArray":[{"FilePath":"/w/pi\u00e8ce.par",)"
    R"("ObjectTypeToPropertiesArray":[{"ObjectType":0,"Properties":[)"
    R"({"Name":"Material","PropertyType":1,"PropertyValues":["st\u00e9el","Al"]},)"
    R"({"Name":"Mass","PropertyType":3,"PropertyValues":["2.5"]}]},)"
    R"({"ObjectType":1,"Properties":[{"Name":"LockedBy"}]}]},)"
    R"({"FilePath":"/w/b.asm"}]})";

// One line per object-type group: "path type name(type)=value,value name(type)=".
std::vector<std::wstring> Describe(const FilePropertyList& files) {
    std::vector<std::wstring> lines;
    for (const FilePropertyEntry& file : files) {
        for (const ObjectTypeProperties& group : file.objectTypes) {
            std::wstring line = file.filePath.wstr() + L" " + std::to_wstring(group.objectType);
            for (const PropertyEntry& property : group.properties) {
                line += L" " + property.name.wstr() + L"(" + std::to_wstring(property.type) + L")=";
                for (const GUserText& value : property.values) {
                    line += value.wstr() + (&value != &property.values.back() ? L"," : L"");
                }
            }
            lines.push_back(line);
        }
    }
    return lines;
}

class PropertiesDataObjects : public testsupport::SharedPathsTest {
protected:
    HRESULT GetProperties(const PropertyNameSet& filter) {
        return files->GetProperties({L"/w/pi\u00e8ce.par", L"/w/b.asm"}, filter, &properties);
    }
    FilePropertyList properties = FilePropertyList(1);
};

TEST_F(PropertiesDataObjects, GetPropertiesAsksForEveryGroupAndFiltersByName) {
    connector.Answer("GETPROPERTIES", PropertiesAnswer);
    EXPECT_EQ(S_OK, GetProperties({}));
    EXPECT_EQ(Head("GETPROPERTIES") + "\"FilePathToObjectTypesArray\":[{\"Key\":\"/w/pi\xC3\xA8"
                                      "ce.par\",\"ObjectTypeList\":[0,2,1]},{\"Key\":\"/w/b.asm\","
                                      "\"ObjectTypeList\":[0,2,1]}]}",
              Sent("GETPROPERTIES"));
    EXPECT_EQ((Lines{{2, NoErrorsFound}}), Take());
    // A file without groups is still handed back; it shows here as no line.
    ASSERT_EQ(3u, properties.size());
    EXPECT_EQ(GUserText(L"/w/b.asm"), properties[2].filePath);
    EXPECT_EQ(
        (std::vector<std::wstring>{L"/w/pi\u00e8ce.par 0 Material(1)=st\u00e9el,Al Mass(3)=2.5",
                                   L"/w/pi\u00e8ce.par 1 LockedBy(0)="}),
        Describe(properties));

    // Groups whose properties are all filtered out are kept, empty. The filter is exact.
    properties.resize(1);
    EXPECT_EQ(S_OK, GetProperties({L"Mass", L"lockedby"}));
    EXPECT_EQ(
        (std::vector<std::wstring>{L"/w/pi\u00e8ce.par 0 Mass(3)=2.5", L"/w/pi\u00e8ce.par 1"}),
        Describe(properties));
}

TEST_F(PropertiesDataObjects, GetPropertiesFailsOnErrorsAndExceptionsButDoesNotTestTheSession) {
    const auto call = [&] { return GetProperties({}); };
    connector.Answer("GETPROPERTIES", ErrorsAnswer({1}, PropertiesAnswer));
    EXPECT_EQ(E_FAIL, call());
    // No code line: this failure does not report its codes.
    EXPECT_EQ((Lines{{0, L"Error getting file properties."}}), Take());
    ExpectEachException("GETPROPERTIES", E_FAIL, call);
    EXPECT_EQ(1u, properties.size());

    // Without a session id the question still goes out, with an empty one.
    connector.Answer("GETPROPERTIES", R"({"Errors":[]})");
    Unregister();
    EXPECT_EQ(S_OK, files->GetProperties({}, {}, nullptr));
    EXPECT_EQ(R"({"Command":"GETPROPERTIES","SessionId":"","Version":1,)"
              R"("FilePathToObjectTypesArray":[]})",
              connector.executeRequests.back());
    EXPECT_EQ((Lines{{2, NoErrorsFound}}), Take());

    // Without a proxy the call fails in its guard.
    connector.proxyAvailable = false;
    testsupport::ManagerHandle bare;
    const std::size_t sent = connector.executeRequests.size();
    EXPECT_EQ(E_FAIL, bare.FileServices()->GetProperties({L"/w/b.asm"}, {}, &properties));
    EXPECT_EQ((Lines{testsupport::ExceptionLine(L"Corvane proxy is not available")}), Take());
    EXPECT_EQ(sent, connector.executeRequests.size());
    EXPECT_EQ(1u, properties.size());
}

TEST_F(PropertiesDataObjects, SetDataObjectSavesUnderTheFixedKeyAndIgnoresTheAnswer) {
    const auto call = [&] { return files->SetDataObject(L"layout-\u00e9", L"{\"a\":1}"); };
    connector.Answer("SETDATAOBJECT", ErrorsAnswer({1, 4}));
    EXPECT_EQ(S_OK, call());
    EXPECT_EQ(Lines{}, Take());
    EXPECT_EQ(Head("SETDATAOBJECT") + "\"Key\":{\"PrimaryKey\":\"layout-\xC3\xA9\","
                                      R"("SecondaryKey":"SaveData"},"Data":"{\"a\":1}"})",
              Sent("SETDATAOBJECT"));
    ExpectEachException("SETDATAOBJECT", E_FAIL, call);
}

} // namespace
