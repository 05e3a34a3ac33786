// Properties of files and keyed data objects.
#include "fileservices/PropertiesDataObjects.h"

#include "fileservices/CallFrame.h"
#include "fileservices/ReturnCodes.h"
#include "protocol/commands/GenericCommands.h"

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::CorvaneGetPropertiesInput;
using Corvane::CommandIO::Generic::CorvaneSetDataObjectInput;
using Corvane::DataTypes::CorvaneDataObjectKey;
using Corvane::DataTypes::CorvaneStringToObjectTypesPair;

// Every group a host asks properties for, in the order they are asked.
constexpr std::int32_t PropertyGroups[] = {vanto::protocol::ObjectType::Component,
                                           vanto::protocol::ObjectType::Document,
                                           vanto::protocol::ObjectType::Lock};

// The secondary key every data object is saved under.
constexpr const char* SaveDataKey = "SaveData";

PropertyEntry PropertyOf(const Corvane::DataTypes::CorvaneProperty& property, GUserText name) {
    PropertyEntry entry;
    entry.name = std::move(name);
    entry.type = property.PropertyType;
    entry.values.reserve(property.PropertyValues.size());
    for (const Core::TevString& value : property.PropertyValues) {
        entry.values.push_back(FromUtf8(value));
    }
    return entry;
}

} // namespace

void AppendProperties(const CorvaneGetPropertiesOutput& output, const PropertyNameSet& filter,
                      FilePropertyList& properties) {
    properties.reserve(properties.size() + output.FilePropertiesArray.size());
    for (const auto& file : output.FilePropertiesArray) {
        FilePropertyEntry entry;
        entry.filePath = FromNarrow(file->FilePath);
        entry.objectTypes.reserve(file->ObjectTypeToPropertiesArray.size());
        for (const auto& group : file->ObjectTypeToPropertiesArray) {
            ObjectTypeProperties kept;
            kept.objectType = group->ObjectType;
            for (const auto& property : group->Properties) {
                GUserText name = FromUtf8(property->Name);
                if (filter.empty() || filter.count(name) != 0) {
                    kept.properties.push_back(PropertyOf(*property, std::move(name)));
                }
            }
            entry.objectTypes.push_back(std::move(kept));
        }
        properties.push_back(std::move(entry));
    }
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

// Runs no session test of its own: a manager without a proxy fails in the guard like any call.
HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetProperties(
    const PathList& paths, const PropertyNameSet& filter, FilePropertyList* properties) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetProperties");
    const Target<FilePropertyList> list(properties);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetPropertiesInput input;
        input.FilePathToObjectTypesArray.reserve(paths.size());
        for (const GUserText& path : paths) {
            Core::UniquePtr<CorvaneStringToObjectTypesPair> pair(
                new CorvaneStringToObjectTypesPair());
            pair->Key = ToUtf8(path);
            pair->ObjectTypeList.assign(std::begin(PropertyGroups), std::end(PropertyGroups));
            input.FilePathToObjectTypesArray.push_back(std::move(pair));
        }
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"Error getting file properties.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        AppendProperties(output, filter, *list);
        frame.Info(L"\nNo Errors Found!\n");
        return S_OK;
    });
}

// The answer is read but not examined: storing a data object never fails the host's call.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::SetDataObject(const GUserText& primaryKey, const GUserText& data) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::SetDataObject");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    return frame.Guard(E_FAIL, [&] {
        CorvaneSetDataObjectInput input;
        input.Key.reset(new CorvaneDataObjectKey());
        input.Key->PrimaryKey = ToNarrow(primaryKey);
        input.Key->SecondaryKey = SaveDataKey;
        input.Data = ToNarrow(data);
        frame.Execute(input);
        return S_OK;
    });
}
