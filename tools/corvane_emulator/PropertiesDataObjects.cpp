// Properties and data objects: a file's properties by object type, and stored data objects.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

namespace {

// The groups a request that names none gets.
constexpr std::int32_t AllGroups[] = {ObjectType::Component, ObjectType::Lock,
                                      ObjectType::Document};

void AddProperty(CorvaneObjectTypeToPropertiesPair& group, const char* name,
                 const std::string& value) {
    CorvaneProperty& property = Append(group.Properties);
    property.Name = name;
    property.PropertyType = protocol::PropertyType::Text;
    property.PropertyValues.push_back(T(value));
}

} // namespace

VANTO_EMULATOR_COMMAND(GetProperties, command::CorvaneGetPropertiesInput) {
    for (const auto& request : in.FilePathToObjectTypesArray) {
        const std::string path = request->Key.str();
        const auto d = store.FindDocument(path, IdentifierType::FilePath);
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, path);
            continue;
        }
        const bool all = request->ObjectTypeList.empty();
        const std::vector<std::int32_t> types(
            all ? std::begin(AllGroups) : request->ObjectTypeList.data(),
            all ? std::end(AllGroups)
                : request->ObjectTypeList.data() + request->ObjectTypeList.size());
        if (std::any_of(types.begin(), types.end(), [](std::int32_t t) {
                return t < ObjectType::Component || t > ObjectType::Document;
            })) {
            errors.Add(ReturnCode::InvalidObjectType, path);
            continue;
        }
        CorvaneFileProperties& file = Append(out.FilePropertiesArray);
        file.FilePath = request->Key;
        for (std::int32_t type : types) {
            CorvaneObjectTypeToPropertiesPair& group = Append(file.ObjectTypeToPropertiesArray);
            group.ObjectType = type;
            if (type == ObjectType::Component) { // the document's own properties
                AddProperty(group, "Name", d->name);
                AddProperty(group, "Revision", d->revision);
                AddProperty(group, "Number", d->itemNumber);
                for (const auto& [name, value] : store.Properties(d->key)) {
                    CorvaneProperty& property = Append(group.Properties);
                    property.Name = T(name);
                    property.PropertyValues.push_back(T(value));
                }
            } else if (type == ObjectType::Lock) { // lock
                AddProperty(group, "LockedBy", d->lock.holder);
                AddProperty(group, "LockedByUrn", d->lock.holderUrn);
                AddProperty(group, "LockedAt", d->lock.lockedAt);
                AddProperty(group, "LockExpires", d->lock.expires);
            } else { // identity and the version on this disk
                AddProperty(group, "consistencyStamp", d->localVersion);
                AddProperty(group, "DocumentId", d->documentId);
                AddProperty(group, "ComponentId", d->componentId);
                AddProperty(group, "ComponentRevisionId", d->componentRevisionId);
            }
        }
    }
}

VANTO_EMULATOR_COMMAND(SetDataObject, command::CorvaneSetDataObjectInput) {
    if (!in.Key || in.Key->PrimaryKey.empty()) {
        errors.AddWithoutId(ReturnCode::InvalidInput);
        return;
    }
    store.SetDataObject(in.Key->PrimaryKey.str(), in.Key->SecondaryKey.str(), in.Data.str());
}

} // namespace vanto::emulator
