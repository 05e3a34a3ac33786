#include "Handler.h"

#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/GenericCommands.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"
#include "protocol/registration/SessionOutputs.h"

#include <boost/json.hpp>

#include <algorithm>
#include <cctype>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace corvane::emulator {

namespace {

namespace json = boost::json;
using namespace Corvane::CommandIO;
using namespace Corvane::CommandIO::DataManagement;
using namespace Corvane::CommandIO::DataManagement::MCAD;
using namespace Corvane::CommandIO::Generic;
using namespace Corvane::DataTypes;
using Corvane::Error::ErrorInfo;
using vanto::protocol::Kind;
using vanto::protocol::Schema;
using vanto::protocol::SchemaOf;

// Return codes of the protocol.
enum Code : std::int32_t {
    Failed = 1,
    UserNotSignedIn = 3,
    CommandNotSupported = 4,
    Offline = 6,
    InvalidInput = 7,
    NotFound = 8,
    InvalidObjectType = 9,
    UnableToDeterminePath = 10,
    AccessDenied = 12,
    Locked = 13,
    UnsupportedFileType = 18,
    ReferenceExists = 21,
    AlreadySynchronised = 102,
};

// The level of access that allows changes (1 is read only).
constexpr std::int64_t WriteAccess = 2;

constexpr const char* Version = "Corvane connector emulator 1.0";

template <class R> R& Append(Core::DynamicArray<Core::UniquePtr<R>>& list) {
    list.push_back(Core::UniquePtr<R>(new R()));
    return *list.back();
}

template <class R> R& Set(Core::UniquePtr<R>& member) {
    member.reset(new R());
    return *member;
}

Core::TevString T(const std::string& text) {
    return Core::TevString(text);
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

// Errors of one answer, one entry per code with every object it concerns, in order of first
// appearance.
class ErrorList {
public:
    void Add(std::int32_t code, std::string_view id) {
        for (auto& [known, ids] : entries_) {
            if (known == code) {
                ids.emplace_back(id);
                return;
            }
        }
        entries_.push_back({code, {std::string(id)}});
    }
    void AddWithoutId(std::int32_t code) { entries_.push_back({code, {}}); }
    template <class Out> void WriteTo(Out& out) const {
        for (const auto& [code, ids] : entries_) {
            ErrorInfo& error = Append(out.Errors);
            error.ErrorCode = code;
            for (const std::string& id : ids) {
                error.Ids.push_back(T(id));
            }
        }
    }

private:
    std::vector<std::pair<std::int32_t, std::vector<std::string>>> entries_;
};

std::string ErrorAnswer(std::int32_t code, std::string_view id = {}) {
    CommandOutputBase out;
    ErrorList errors;
    if (id.empty()) {
        errors.AddWithoutId(code);
    } else {
        errors.Add(code, id);
    }
    errors.WriteTo(out);
    return vanto::protocol::WriteRecord(&out, SchemaOf<CommandOutputBase>()).str();
}

// Longer than any path or identifier a client has reason to send.
constexpr std::size_t MaxTextBytes = 64 * 1024;

bool IsText(const json::value& value) {
    return value.is_string() && value.get_string().size() <= MaxTextBytes;
}

bool IsInt32(const json::value& value) {
    if (value.is_int64()) {
        const std::int64_t v = value.get_int64();
        return v >= INT32_MIN && v <= INT32_MAX;
    }
    return value.is_uint64() && value.get_uint64() <= INT32_MAX;
}

bool AllOf(const json::value& value, bool (*test)(const json::value&)) {
    if (!value.is_array()) {
        return false;
    }
    const json::array& array = value.get_array();
    return std::all_of(array.begin(), array.end(), test);
}

bool Matches(const json::value& value, const Schema& schema);

// Keys that name no member are not read, but an overlong text in them is refused all the same.
bool NoLongText(const json::value& value) {
    if (value.is_string()) {
        return IsText(value);
    }
    if (value.is_array()) {
        return AllOf(value, NoLongText);
    }
    if (value.is_object()) {
        for (const auto& [key, member] : value.get_object()) {
            if (key.size() > MaxTextBytes || !NoLongText(member)) {
                return false;
            }
        }
    }
    return true;
}

bool MatchesField(const vanto::protocol::Field& field, const json::value& value) {
    switch (field.kind) {
    case Kind::Text:
        return IsText(value);
    case Kind::Integer:
        return IsInt32(value);
    case Kind::Flag:
        return value.is_bool();
    case Kind::Texts:
        return AllOf(value, IsText);
    case Kind::Integers:
        return AllOf(value, IsInt32);
    case Kind::Record:
        return Matches(value, field.nested());
    case Kind::Records:
        if (!value.is_array()) {
            return false;
        }
        for (const json::value& element : value.get_array()) {
            if (!Matches(element, field.nested())) {
                return false;
            }
        }
        return true;
    }
    return false;
}

// Depth is bounded by the parser's limit, so the recursion is too.
bool Matches(const json::value& value, const Schema& schema) {
    if (!value.is_object()) {
        return false;
    }
    for (const auto& [key, member] : value.get_object()) {
        // A lambda may not capture a structured binding before C++20 (clang refuses it).
        const std::string_view name = key;
        const auto* field =
            std::find_if(schema.fields, schema.fields + schema.count,
                         [&](const vanto::protocol::Field& f) { return f.key == name; });
        const bool known = field != schema.fields + schema.count;
        if (known ? !MatchesField(*field, member) : !NoLongText(member)) {
            return false;
        }
    }
    return true;
}

std::optional<json::value> Parse(std::string_view text, json::storage_ptr storage) {
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    options.allow_invalid_utf8 = false;
    boost::system::error_code error;
    json::value value = json::parse(json::string_view(text.data(), text.size()), error,
                                    std::move(storage), options);
    if (error || !value.is_object()) {
        return std::nullopt;
    }
    return value;
}

std::string RandomHex(std::size_t bytes) {
    static std::random_device device;
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) {
        const unsigned value = device() & 0xFFU;
        text += digits[value >> 4];
        text += digits[value & 0xFU];
    }
    return text;
}

// Revision ids run A..Z, AA..AZ, BA.. like spreadsheet columns: number 1 is A.
std::string RevisionLetters(std::int64_t number) {
    std::string letters;
    while (number > 0) {
        --number;
        letters.insert(letters.begin(), static_cast<char>('A' + number % 26));
        number /= 26;
    }
    return letters;
}

bool IsKnownExtension(std::string extension) {
    extension = Lower(extension);
    if (!extension.empty() && extension.front() == '.') {
        extension.erase(0, 1);
    }
    return extension == "par" || extension == "psm" || extension == "asm" || extension == "pwd" ||
           extension == "dft";
}

void FillFileInfo(CorvaneFileInformationObject& info, const Document& d) {
    info.FilePaths.push_back(T(d.path));
    info.ComponentId = T(d.componentId);
    info.ComponentRevisionId = T(d.componentRevisionId);
    info.DocumentId = T(d.documentId);
    info.ComponentUrn = T(d.componentUrn);
    info.ComponentRevisionUrn = T(d.componentRevisionUrn);
    info.DocumentUrn = T(d.documentUrn);
}

void FillContext(CorvaneContextInformation& context, Store& store, const Document& d) {
    context.ContainerType = "PROJECT";
    if (auto container = store.ContainerByKey(d.container)) {
        context.CollaborationSpaceId = T(container->collaborationSpace);
        context.ContainerId = T(container->containerId);
        context.ContainerURN = T(container->urn);
    }
}

void FillLock(CorvaneLockInfo& info, const std::string& identifier, const Document& d,
              std::int32_t code) {
    info.DesignIdentifier = T(identifier);
    info.LockedBy = T(d.lock.holder);
    info.LockedAt = T(d.lock.lockedAt);
    info.LockExpires = T(d.lock.expires);
    info.LockedByUrn = T(d.lock.holderUrn);
    info.ErrorCode = code;
}

void AddProperty(CorvaneObjectTypeToPropertiesPair& group, const char* name,
                 const std::string& value) {
    CorvaneProperty& property = Append(group.Properties);
    property.Name = name;
    property.PropertyType = 0; // text
    property.PropertyValues.push_back(T(value));
}

using Context = Handler::Context;

// --- Design revisions -------------------------------------------------------------------------

// One lock info per identifier, in order. A document that is not found, or that another user
// holds (the answer names who), is answered here; `take` gets the ones the user may lock or
// release.
template <class Input, class Output, class Take>
void ForEachDesignLock(Store& store, const Context& c, const Input& in, Output& out,
                       ErrorList& errors, Take take) {
    for (const auto& id : in.DesignIdentifiers) {
        const std::string value = id->Value.str();
        CorvaneLockInfo& status = Append(out.Status);
        status.DesignIdentifier = id->Value;
        const auto d = store.FindDocument(value, id->IdentifierType);
        if (!d) {
            status.ErrorCode = NotFound;
            errors.Add(NotFound, value);
        } else if (d->lockUser != 0 && d->lockUser != c.user) {
            FillLock(status, value, *d, Locked);
            errors.Add(Locked, value);
        } else {
            take(status, value, *d);
        }
    }
}

void LockDesignRevisions(Store& store, Context& c, const CorvaneLockDesignRevisionsInput& in,
                         CorvaneLockDesignRevisionsOutput& out, ErrorList& errors) {
    ForEachDesignLock(store, c, in, out, errors,
                      [&](CorvaneLockInfo& status, const std::string& value, const Document& d) {
                          if (store.Permission(d.key, c.user) < WriteAccess) {
                              status.ErrorCode = AccessDenied;
                              errors.Add(AccessDenied, value);
                              return;
                          }
                          // A time to live of -1 (or 0) never expires; otherwise it is in
                          // seconds.
                          store.SetLock(d.key, c.user, in.TimeToLive > 0 ? in.TimeToLive : -1);
                          FillLock(status, value, *store.DocumentByKey(d.key), 0);
                      });
}

void UnlockDesignRevisions(Store& store, Context& c, const CorvaneUnLockDesignRevisionsInput& in,
                           CorvaneUnLockDesignRevisionsOutput& out, ErrorList& errors) {
    ForEachDesignLock(
        store, c, in, out, errors,
        [&](CorvaneLockInfo&, const std::string&, const Document& d) { store.ClearLock(d.key); });
}

bool TermMatches(Store& store, const Document& d,
                 const Corvane::DataTypes::Search::CorvaneSearchTerm& term) {
    const std::string property = Lower(term.Property.str());
    std::string actual;
    if (property == "name") {
        actual = d.name;
    } else if (property == "revision" || property == "revid") {
        actual = d.revision;
    } else if (property == "number") {
        actual = d.itemNumber;
    } else {
        actual = store.Db()
                     .QueryText("SELECT value FROM properties WHERE document = ? AND name = ? "
                                "COLLATE NOCASE",
                                d.key, term.Property.str())
                     .value_or("");
    }
    const std::string wanted = Lower(term.Value.str());
    actual = Lower(actual);
    switch (term.ComparisionOp) {
    case 1: // contains
        return actual.find(wanted) != std::string::npos;
    case 2: // starts with
        return actual.compare(0, wanted.size(), wanted) == 0;
    default: // equals, ignoring case
        return actual == wanted;
    }
}

void QueryDesignRevisions(Store& store, Context&, const CorvaneQueryDesignRevisionsInput& in,
                          CorvaneQueryDesignRevisionsOutput& out, ErrorList& errors) {
    const auto& criteria = in.RevisionCriteria ? in.RevisionCriteria : in.AttachmentCriteria;
    const Corvane::DataTypes::Search::CorvaneSearchDefinition* definition =
        criteria ? criteria->Definition.get() : nullptr;
    const std::int32_t skip = in.Options ? in.Options->Skip : 0;
    std::int32_t limit = in.Options ? in.Options->Limit : 0;
    if (skip < 0 || limit < 0) {
        errors.AddWithoutId(InvalidInput);
        return;
    }
    limit = limit == 0 ? 50 : std::min(limit, 1000);
    const std::string containerId = in.Context ? in.Context->ContainerId.str() : std::string();

    std::map<std::int64_t, CorvaneContextToDesignRevisions*> byContainer;
    std::int32_t seen = 0;
    std::int32_t taken = 0;
    for (const Document& d : store.AllDocuments()) {
        bool match = definition == nullptr || definition->SearchTerms.empty() ||
                     definition->Operator != 1; // all terms (0) or any term (1)
        if (definition != nullptr) {
            for (const auto& term : definition->SearchTerms) {
                const bool hit = TermMatches(store, d, *term);
                match = definition->Operator == 1 ? (match || hit) : (match && hit);
            }
        }
        const auto container = store.ContainerByKey(d.container);
        if (!containerId.empty() && (!container || container->containerId != containerId)) {
            match = false;
        }
        if (!match || seen++ < skip) {
            continue;
        }
        if (taken++ == limit) {
            break;
        }
        auto& group = byContainer[d.container];
        if (group == nullptr) {
            group = &Append(out.DesignRevisionInfo);
            FillContext(Set(group->ContextInformation), store, d);
        }
        CorvaneDesignRevision& revision = Append(group->DesignRevision);
        revision.Id = T(d.componentRevisionId);
        revision.Name = T(d.name);
        revision.Urn = T(d.componentRevisionUrn);
        CorvaneProperty& revid = Append(revision.Properties);
        revid.Name = "revid";
        revid.PropertyValues.push_back(T(d.revision));
        CorvaneDataset& dataset = Append(revision.Datasets);
        dataset.Id = T(d.documentId);
        dataset.Urn = T(d.documentUrn);
        dataset.VersionId = T(d.cloudVersion);
        dataset.Name = T(d.name);
        const std::size_t slash = d.path.find_last_of("/\\");
        dataset.FileName = T(slash == std::string::npos ? d.path : d.path.substr(slash + 1));
        if (d.lockUser != 0) {
            FillLock(Set(revision.LockInfo), d.componentRevisionId, d, 0);
        }
    }
}

// --- Structure -----------------------------------------------------------------------------------

void FillChild(CorvaneChildRelationInfo& child, const Relation& r, const Document& d) {
    FillFileInfo(Set(child.ChildDocumentInfo), d);
    child.RelationId = T(r.relationId);
    child.RelationUrn = T(r.urn);
    child.RelationType = T(r.type);
    child.RelationVersionId = T(std::to_string(r.version));
}

void QueryPrimaryObjects(Store& store, Context&, const CorvaneQueryPrimaryObjectsInput& in,
                         CorvaneQueryPrimaryObjectsOutput& out, ErrorList& errors) {
    const auto d = store.FindDocument(in.Identifier.str(), in.IdentifierType);
    if (!d) {
        errors.Add(NotFound, in.Identifier.str());
        return;
    }
    std::set<std::string> types;
    for (const auto& type : in.RelationTypes) {
        types.insert(Lower(type.str()));
    }
    CorvaneQueryRelationInfo& info = Append(out.QueryRelationInfos);
    FillFileInfo(Set(info.InputDocument), *d);
    for (const Relation& r : store.RelationsOf(d->key, false)) {
        if (!types.empty() && types.count(Lower(r.type)) == 0) {
            continue;
        }
        CorvaneRelation& relation = Append(info.Relations);
        FillFileInfo(Set(relation.RelatedDocument), *store.DocumentByKey(r.parent));
        relation.RelationId = T(r.relationId);
        relation.RelationUrn = T(r.urn);
        relation.RelationType = T(r.type);
        relation.RelationConsistencyStamp = T(std::to_string(r.version));
    }
}

void AddChildren(Store& store, Context&, const CorvaneAddChildrenInput& in,
                 CorvaneAddChildrenOutput& out, ErrorList& errors) {
    for (const auto& request : in.ParentChildRelationInfos) {
        const auto parent =
            store.FindDocument(request->ParentIdentifier.str(), request->ParentIdentifierType);
        if (!parent) {
            errors.Add(NotFound, request->ParentIdentifier.str());
            continue;
        }
        CorvaneParentToRelationsInfo& answer = Append(out.ParentChildRelationInfo);
        FillFileInfo(Set(answer.ParentDocumentInfo), *parent);
        for (const auto& childRequest : request->ChildRevisionInfos) {
            const std::string identifier = childRequest->Identifier.str();
            const auto child = store.FindDocument(identifier, childRequest->IdentifierType);
            if (!child) {
                errors.Add(NotFound, identifier);
                continue;
            }
            if (child->key == parent->key) {
                errors.Add(InvalidInput, identifier);
                continue;
            }
            if (store.Db().QueryInt("SELECT 1 FROM relations WHERE parent = ? AND child = ? AND "
                                    "type = ?",
                                    parent->key, child->key, std::string(DesignChildRelation))) {
                errors.Add(ReferenceExists, identifier);
                continue;
            }
            const std::int64_t key =
                store.AddRelation(parent->key, child->key, DesignChildRelation);
            for (const Relation& r : store.RelationsOf(parent->key, true)) {
                if (r.key == key) {
                    FillChild(Append(answer.ChildRelationInfos), r, *child);
                }
            }
        }
    }
}

void GetChildren(Store& store, Context&, const CorvaneGetChildrenInput& in,
                 CorvaneGetChildrenOutput& out, ErrorList& errors) {
    const auto parent = store.FindDocument(in.Identifier.str(), in.IdentifierType);
    if (!parent) {
        errors.Add(NotFound, in.Identifier.str());
        return;
    }
    CorvaneParentToRelationsInfo& answer = Append(out.ParentChildRelationInfo);
    FillFileInfo(Set(answer.ParentDocumentInfo), *parent);
    for (const Relation& r : store.RelationsOf(parent->key, true)) {
        FillChild(Append(answer.ChildRelationInfos), r, *store.DocumentByKey(r.child));
    }
}

void RemoveChildren(Store& store, Context&, const CorvaneRemoveChildrenInput& in,
                    CorvaneRemoveChildrenOutput&, ErrorList& errors) {
    for (const auto& urn : in.RelationURNs) {
        if (urn.empty()) {
            continue; // a client pads its list with empty entries for children it did not find
        }
        const auto relation = store.FindRelation(urn.str());
        if (!relation) {
            errors.Add(NotFound, urn.str());
            continue;
        }
        store.Db().Run("DELETE FROM relations WHERE id = ?", relation->key);
    }
}

// --- Numbering -----------------------------------------------------------------------------------

void GetNextId(Store& store, Context&, const CorvaneGetNextIdInput& in, CorvaneGetNextIdOutput& out,
               ErrorList& errors) {
    if (in.NumberOfIds < 1 || in.NumberOfIds > 1000) {
        errors.AddWithoutId(InvalidInput);
        return;
    }
    if (!IsKnownExtension(in.FileExtension.str())) {
        errors.Add(UnsupportedFileType, in.FileExtension.str());
        return;
    }
    const auto roots = store.RootFolders();
    if (std::none_of(roots.begin(), roots.end(), [&](const std::string& root) {
            return IsUnder(in.DirectoryPath.str(), root);
        })) {
        errors.Add(UnableToDeterminePath, in.DirectoryPath.str());
        return;
    }
    const std::string property = in.Properties.empty() ? "number" : in.Properties[0].str();
    for (std::int32_t i = 0; i < in.NumberOfIds; ++i) {
        CorvaneGetNextIdInfo& info = Append(out.NextIdInfo);
        info.PropertyName = T(property);
        info.Number = T(std::to_string(1000 + store.Next("item")));
        if (in.GetInitialRevId) {
            info.Revid = "A";
        }
    }
}

void GetNextRevisionId(Store& store, Context&, const CorvaneGetNextRevisionIdInput& in,
                       CorvaneGetNextRevisionIdOutput& out, ErrorList& errors) {
    for (const auto& id : in.DesignRevisionIdentifiers) {
        const auto d = store.FindDocument(id->Value.str(), id->IdentifierType);
        if (!d) {
            errors.Add(NotFound, id->Value.str());
            continue;
        }
        CorvaneGetNextRevisionIdInfo& info = Append(out.NextRevisionIdInfo);
        info.RevisionFilepath = T(d->path);
        // Each call hands out a new id: two clients asking at once never get the same one.
        info.Revid = T(RevisionLetters(store.Next("revision:" + std::to_string(d->key))));
    }
}

// --- Files ---------------------------------------------------------------------------------------

void GetFileContextInfo(Store& store, Context&, const CorvaneGetFileContextInformationInput& in,
                        CorvaneGetFileContextInformationOutput& out, ErrorList& errors) {
    for (const auto& file : in.Files) {
        const auto d = store.FindDocument(file.str(), 0);
        if (!d) {
            errors.Add(NotFound, file.str());
            continue;
        }
        CorvaneFileContextInformation& info = Append(out.FileContextInformation);
        FillFileInfo(Append(info.FileInformation), *d);
        FillContext(Set(info.ContextInformation), store, *d);
    }
}

void GetFilePathByUid(Store& store, Context&, const CorvaneGetFilePathByUidInput& in,
                      CorvaneGetFilePathByUidOutput& out, ErrorList& errors) {
    for (const auto& pair : in.ListOfFileUidAndContextInformation) {
        const std::string uid = pair->FileUid.str();
        auto d = store.FindDocument(uid, 1);
        if (!d) {
            d = store.FindDocument(uid, 2);
        }
        if (!d) {
            errors.Add(NotFound, uid);
            continue;
        }
        CorvaneStringToStringListPair& entry = Append(out.DocumentIdToFilePathMap);
        entry.Key = pair->FileUid;
        entry.Values.push_back(T(d->path));
    }
}

void CheckForNewerVersion(Store& store, Context&, const CorvaneCheckNewerVersionOnCloudInput& in,
                          CorvaneCheckNewerVersionOnCloudOutput& out, ErrorList& errors) {
    for (const auto& identifier : in.IdentifierToCheckForNewerVersion) {
        const auto d = store.FindDocument(identifier.str(), in.IdentifierType);
        if (!d) {
            errors.Add(NotFound, identifier.str());
            continue;
        }
        CorvaneStringToStringPair& newest = Append(out.IdentifierToNewerVersionId);
        newest.Key = T(d->documentId);
        newest.Value = T(d->cloudVersion);
        CorvaneStringToBoolPair& newer = Append(out.IdentifierToHasNewerVersionInCloud);
        newer.Key = identifier;
        newer.Value = d->cloudVersion != d->localVersion;
    }
}

void GetProperties(Store& store, Context&, const CorvaneGetPropertiesInput& in,
                   CorvaneGetPropertiesOutput& out, ErrorList& errors) {
    for (const auto& request : in.FilePathToObjectTypesArray) {
        const std::string path = request->Key.str();
        const auto d = store.FindDocument(path, 0);
        if (!d) {
            errors.Add(NotFound, path);
            continue;
        }
        std::vector<std::int32_t> types(request->ObjectTypeList.begin(),
                                        request->ObjectTypeList.end());
        if (types.empty()) {
            types = {0, 1, 2};
        }
        if (std::any_of(types.begin(), types.end(),
                        [](std::int32_t t) { return t < 0 || t > 2; })) {
            errors.Add(InvalidObjectType, path);
            continue;
        }
        CorvaneFileProperties& file = Append(out.FilePropertiesArray);
        file.FilePath = request->Key;
        for (std::int32_t type : types) {
            CorvaneObjectTypeToPropertiesPair& group = Append(file.ObjectTypeToPropertiesArray);
            group.ObjectType = type;
            if (type == 0) { // the document's own properties
                AddProperty(group, "Name", d->name);
                AddProperty(group, "Revision", d->revision);
                AddProperty(group, "Number", d->itemNumber);
                Statement row = store.Db().Prepare(
                    "SELECT name, value FROM properties WHERE document = ? ORDER BY name");
                row.Bind(1, d->key);
                while (row.Step()) {
                    CorvaneProperty& property = Append(group.Properties);
                    property.Name = T(row.Text(0));
                    property.PropertyValues.push_back(T(row.Text(1)));
                }
            } else if (type == 1) { // lock
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

// --- Containers and permissions ------------------------------------------------------------------

void GetAvailableContainers(Store& store, Context&, const CorvaneGetAvailableContainersInput& in,
                            CorvaneGetAvailableContainersOutput& out, ErrorList&) {
    const std::string name = Lower(in.Name.str());
    for (const Container& c : store.AllContainers()) {
        const bool typeWanted =
            in.ContainerType.empty() || std::find(in.ContainerType.begin(), in.ContainerType.end(),
                                                  c.type) != in.ContainerType.end();
        if (!typeWanted || (!in.ReturnUnsynched && !c.synchronised) ||
            (!name.empty() && Lower(c.name).find(name) == std::string::npos)) {
            continue;
        }
        CorvaneContainerInformation& info = Append(out.ContainerInformation);
        info.LocalFilePath = T(c.localPath);
        info.ContainerType = static_cast<std::int32_t>(c.type);
        info.ContainerName = T(c.name);
        info.ContainerId = T(c.containerId);
        info.ContainerUrn = T(c.urn);
        info.ContainerOwnershipType = static_cast<std::int32_t>(c.ownership);
        Set(info.CollaborationSpace).CollaborationSpaceId = T(c.collaborationSpace);
    }
}

void AddProjectToSync(Store& store, Context&, const CorvaneAddProjectToSyncInput& in,
                      CorvaneAddProjectToSyncOutput& out, ErrorList& errors) {
    const auto c = store.FindContainer(in.ProjectURN.str());
    if (!c) {
        errors.Add(NotFound, in.ProjectURN.str());
        return;
    }
    if (c->synchronised) {
        errors.Add(AlreadySynchronised, in.ProjectURN.str());
        return;
    }
    const auto roots = store.RootFolders();
    const std::string root = roots.empty() ? std::string() : roots.front();
    const char separator = root.find('\\') != std::string::npos ? '\\' : '/';
    store.Db().Run("UPDATE containers SET synchronised = 1, local_path = ? WHERE id = ?",
                   root.empty() ? std::string() : root + separator + c->name, c->key);
    out.TaskId = T("TASK-" + std::to_string(store.Next("task")));
}

void GetAccessPermissions(Store& store, Context& c, const CorvaneGetAccessPermissionsInput& in,
                          CorvaneGetAccessPermissionsOutput& out, ErrorList& errors) {
    static const char* const names[] = {"none", "read", "write"};
    for (const auto& path : in.Paths) {
        const auto d = store.FindDocument(path.str(), 0);
        if (!d) {
            errors.Add(NotFound, path.str());
            continue;
        }
        const std::int64_t level = std::clamp<std::int64_t>(store.Permission(d->key, c.user), 0, 2);
        CorvaneAccessPermissionsInfo& info = Append(out.AccessPermissionsInfo);
        info.Path = path;
        info.AccessPermission = static_cast<std::int32_t>(level);
        info.MoreInfo = names[level];
    }
}

void IsPathMonitored(Store& store, Context&, const CorvaneIsPathMonitoredInput& in,
                     CorvaneIsPathMonitoredOutput& out, ErrorList&) {
    const auto roots = store.RootFolders();
    for (const auto& path : in.Paths) {
        CorvaneStringToBoolPair& entry = Append(out.PathToIsMonitored);
        entry.Key = path;
        entry.Value =
            !path.empty() && std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
                return IsUnder(path.str(), root);
            });
    }
}

void SetDataObject(Store& store, Context&, const CorvaneSetDataObjectInput& in,
                   CorvaneSetDataObjectOutput&, ErrorList& errors) {
    if (!in.Key || in.Key->PrimaryKey.empty()) {
        errors.AddWithoutId(InvalidInput);
        return;
    }
    store.Db().Run("INSERT OR REPLACE INTO data_objects(primary_key, secondary_key, data) "
                   "VALUES (?, ?, ?)",
                   in.Key->PrimaryKey.str(), in.Key->SecondaryKey.str(), in.Data.str());
}

// The answer of a registration: the session, and errors when there is none.
class RegisterAnswer : public Core::AllocatableObject {
public:
    Core::TevString SessionId;
    Core::DynamicArray<Core::UniquePtr<ErrorInfo>> Errors;
    VANTO_JSON_FIELDS(RegisterAnswer, (), (SessionId, Errors))
};

void GetConnectionStatus(Store&, Context&, const Core::CommandIO::CommandInputBase&,
                         CommandOutputBase&, ErrorList&) {
    // Offline answers code 6 before this runs.
}

void GetSessionInfo(Store& store, Context& c, const Core::CommandIO::CommandInputBase&,
                    CorvaneGetSessionInfoOutput& out, ErrorList&) {
    const auto user = store.UserByKey(c.user);
    out.AuthenticatedUserName = T(user->name);
    out.CorvaneLogPath = T(c.options->dataFolder + "/corvane.log");
    out.CloudGatewayLogPath = T(c.options->dataFolder + "/cloud-gateway.log");
    out.UserEmail = T(user->email);
    out.IsLoggedIn = user->signedIn;
    out.UserId = T(user->urn);
    out.Version = Version;
    for (const auto& [name, command] : *c.commands) {
        out.Capabilities.push_back(T(name));
    }
}

void GetRootFolders(Store& store, Context&, const Core::CommandIO::CommandInputBase&,
                    CorvaneGetRootFoldersOutput& out, ErrorList&) {
    for (const std::string& folder : store.RootFolders()) {
        out.RootFolders.push_back(T(folder));
    }
}

template <class In, class Out>
Handler::Command MakeCommand(Store& store, bool cloud,
                             void (*function)(Store&, Context&, const In&, Out&, ErrorList&)) {
    return {&SchemaOf<In>(), cloud, [&store, function](Context& c, std::string_view text) {
                In in;
                vanto::protocol::ReadRecord(&in, SchemaOf<In>(), text);
                Out out;
                ErrorList errors;
                function(store, c, in, out, errors);
                errors.WriteTo(out);
                std::string answer = vanto::protocol::WriteRecord(&out, SchemaOf<Out>()).str();
                if (answer.empty()) {
                    throw std::runtime_error("the answer could not be written");
                }
                return answer;
            }};
}

} // namespace

bool IsAcceptableRequest(std::string_view text, const Schema* schema) {
    json::monotonic_resource memory;
    const auto value = Parse(text, &memory);
    return value && (schema == nullptr || Matches(*value, *schema));
}

Handler::Handler(Store& store, HandlerOptions options)
    : store_(store), options_(std::move(options)) {
    store_.ImportIfEmpty(options_.workspace, options_.user);
    {
        Transaction transaction(store_.Db());
        user_ = store_.EnsureUser(options_.user);
        transaction.Commit();
    }
    // Commands that need the cloud answer code 6 while offline; the others are answered from
    // what this desktop knows.
    const std::pair<const char*, Command> table[] = {
        {"LOCKDESIGNREVISIONS", MakeCommand(store_, true, &LockDesignRevisions)},
        {"UNLOCKDESIGNREVISIONS", MakeCommand(store_, true, &UnlockDesignRevisions)},
        {"QUERYDESIGNREVISIONS", MakeCommand(store_, true, &QueryDesignRevisions)},
        {"QUERYPRIMARYOBJECTS", MakeCommand(store_, false, &QueryPrimaryObjects)},
        {"GETNEXTID", MakeCommand(store_, true, &GetNextId)},
        {"GETNEXTREVISIONID", MakeCommand(store_, true, &GetNextRevisionId)},
        {"ADDCHILDREN", MakeCommand(store_, true, &AddChildren)},
        {"GETCHILDREN", MakeCommand(store_, false, &GetChildren)},
        {"REMOVECHILDREN", MakeCommand(store_, true, &RemoveChildren)},
        {"GETFILECONTEXTINFO", MakeCommand(store_, false, &GetFileContextInfo)},
        {"GETFILEPATHBYUID", MakeCommand(store_, false, &GetFilePathByUid)},
        {"CHECKFORNEWERVERSION", MakeCommand(store_, true, &CheckForNewerVersion)},
        {"GETPROPERTIES", MakeCommand(store_, false, &GetProperties)},
        {"GETAVAILABLECONTAINERS", MakeCommand(store_, true, &GetAvailableContainers)},
        {"ADDPROJECTTOSYNC", MakeCommand(store_, true, &AddProjectToSync)},
        {"GETACCESSPERMISSIONS", MakeCommand(store_, false, &GetAccessPermissions)},
        {"ISPATHMONITORED", MakeCommand(store_, false, &IsPathMonitored)},
        {"SETDATAOBJECT", MakeCommand(store_, false, &SetDataObject)},
        {"GETCONNECTIONSTATUS", MakeCommand(store_, true, &GetConnectionStatus)},
        {"GETSESSIONINFO", MakeCommand(store_, false, &GetSessionInfo)},
        {"GETCORVANEROOTFOLDERS", MakeCommand(store_, false, &GetRootFolders)},
    };
    for (const auto& [name, command] : table) {
        commands_.emplace(name, command);
    }
}

Answer Handler::Handle(std::string_view operation, std::string_view request) noexcept {
    try {
        if (operation == "execute") {
            return Execute(request);
        }
        if (operation == "register") {
            return {Register(request)};
        }
        if (operation == "deregister") {
            return {Deregister(request)};
        }
        if (operation == "ready") {
            return {R"({"Ready":true})"};
        }
        if (operation == "control") {
            Answer answer{Control(request)};
            answer.stopAfter = answer.text == StopAnswer;
            return answer;
        }
        return {ErrorAnswer(CommandNotSupported)};
    } catch (...) {
        // The transaction rolled back on the way out; the data is as it was.
        try {
            return {ErrorAnswer(Failed)};
        } catch (...) {
            return {R"({"Errors":[{"ErrorCode":1,"Ids":[]}]})"};
        }
    }
}

Answer Handler::Execute(std::string_view request) {
    json::monotonic_resource memory;
    const auto value = Parse(request, &memory);
    if (!value) {
        return {ErrorAnswer(InvalidInput)};
    }
    const json::object& object = value->get_object();
    const json::value* name = object.if_contains("Command");
    if (name == nullptr || !name->is_string()) {
        return {ErrorAnswer(InvalidInput)};
    }
    const auto found = commands_.find(std::string_view(name->get_string()));
    if (found == commands_.end()) {
        return {ErrorAnswer(CommandNotSupported, std::string_view(name->get_string()))};
    }
    const Command& command = found->second;
    const json::value* version = object.if_contains("Version");
    if (!Matches(*value, *command.inputSchema) ||
        (version != nullptr && !(version->is_int64() && version->get_int64() == 1))) {
        return {ErrorAnswer(InvalidInput)};
    }
    const json::value* session = object.if_contains("SessionId");

    Transaction transaction(store_.Db());
    Answer answer;
    std::int64_t failCode = 0;
    std::int64_t remaining = -1;
    {
        Statement fault = store_.Db().Prepare(
            "SELECT latency_ms, fail_code, remaining FROM faults WHERE command = ?");
        fault.Bind(1, std::string_view(name->get_string()));
        if (fault.Step()) {
            answer.delayMs = static_cast<std::uint32_t>(fault.Int(0));
            failCode = fault.Int(1);
            remaining = fault.Int(2);
        }
    }
    {
        if (remaining == 1) {
            store_.Db().Run("DELETE FROM faults WHERE command = ?",
                            std::string_view(name->get_string()));
        } else if (remaining > 1) {
            store_.Db().Run("UPDATE faults SET remaining = remaining - 1 WHERE command = ?",
                            std::string_view(name->get_string()));
        }
    }
    const auto sessionUser = session == nullptr
                                 ? std::nullopt
                                 : store_.Db().QueryInt("SELECT user_id FROM sessions WHERE id = ?",
                                                        std::string_view(session->get_string()));
    const auto user = sessionUser ? store_.UserByKey(*sessionUser) : std::nullopt;
    if (failCode != 0) {
        // A fault set for the command answers whoever asks.
        answer.text = ErrorAnswer(static_cast<std::int32_t>(failCode));
    } else if (!user || !user->signedIn) {
        answer.text = ErrorAnswer(UserNotSignedIn);
    } else if (command.needsCloud && !user->online) {
        answer.text = ErrorAnswer(Offline);
    } else {
        Context context{user->key, &options_, &commands_};
        answer.text = command.run(context, request);
    }
    transaction.Commit();
    return answer;
}

std::string Handler::Register(std::string_view request) {
    RegisterAnswer answer;
    ErrorList errors;
    if (!IsAcceptableRequest(request, &SchemaOf<Core::Registration::RegisterClientInput>())) {
        errors.AddWithoutId(InvalidInput);
    } else {
        Core::Registration::RegisterClientInput in;
        vanto::protocol::ReadRecord(&in, SchemaOf<Core::Registration::RegisterClientInput>(),
                                    request);
        Transaction transaction(store_.Db());
        const auto user = store_.UserByKey(user_);
        if (!user || !user->signedIn) {
            errors.AddWithoutId(UserNotSignedIn);
        } else {
            answer.SessionId = T(RandomHex(16));
            store_.Db().Run("INSERT INTO sessions(id, user_id, process_id, process_start, created) "
                            "VALUES (?, ?, ?, ?, ?)",
                            answer.SessionId.str(), user_, std::int64_t{in.ProcessId},
                            in.ProcessStartTime.str(), IsoTime(NowSeconds()));
        }
        transaction.Commit();
    }
    errors.WriteTo(answer);
    return vanto::protocol::WriteRecord(&answer, SchemaOf<RegisterAnswer>()).str();
}

std::string Handler::Deregister(std::string_view request) {
    if (!IsAcceptableRequest(request, &SchemaOf<Core::Registration::DeRegisterClientInput>())) {
        return ErrorAnswer(InvalidInput);
    }
    Core::Registration::DeRegisterClientInput in;
    vanto::protocol::ReadRecord(&in, SchemaOf<Core::Registration::DeRegisterClientInput>(),
                                request);
    Transaction transaction(store_.Db());
    store_.Db().Run("DELETE FROM sessions WHERE id = ?", in.SessionId.str());
    const bool known = store_.Db().Changes() > 0;
    transaction.Commit();
    return known ? std::string(R"({"Errors":[]})") : ErrorAnswer(UserNotSignedIn);
}

} // namespace corvane::emulator
