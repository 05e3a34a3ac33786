// Structure and where-used: the relations between documents, read, added and removed.
#include "Commands.h"

#include <set>

namespace vanto::emulator {

using namespace command;

namespace {

void FillChild(CorvaneChildRelationInfo& child, const Relation& r, const Document& d) {
    FillFileInfo(Set(child.ChildDocumentInfo), d);
    child.RelationId = T(r.relationId);
    child.RelationUrn = T(r.urn);
    child.RelationType = T(r.type);
    child.RelationVersionId = T(std::to_string(r.version));
}

} // namespace

VANTO_EMULATOR_COMMAND(QueryPrimaryObjects, command::CorvaneQueryPrimaryObjectsInput) {
    const auto d = store.FindDocument(in.Identifier.str(), in.IdentifierType);
    if (!d) {
        errors.Add(ReturnCode::ObjectNotFoundInModel, in.Identifier.str());
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

VANTO_EMULATOR_COMMAND(AddChildren, command::CorvaneAddChildrenInput) {
    for (const auto& request : in.ParentChildRelationInfos) {
        const auto parent =
            store.FindDocument(request->ParentIdentifier.str(), request->ParentIdentifierType);
        if (!parent) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, request->ParentIdentifier.str());
            continue;
        }
        CorvaneParentToRelationsInfo& answer = Append(out.ParentChildRelationInfo);
        FillFileInfo(Set(answer.ParentDocumentInfo), *parent);
        for (const auto& childRequest : request->ChildRevisionInfos) {
            const std::string identifier = childRequest->Identifier.str();
            const auto child = store.FindDocument(identifier, childRequest->IdentifierType);
            if (!child) {
                errors.Add(ReturnCode::ObjectNotFoundInModel, identifier);
                continue;
            }
            if (child->key == parent->key) {
                errors.Add(ReturnCode::InvalidInput, identifier);
                continue;
            }
            if (store.HasRelation(parent->key, child->key, DesignChildRelation)) {
                errors.Add(ReturnCode::ReferenceExists, identifier);
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

VANTO_EMULATOR_COMMAND(GetChildren, command::CorvaneGetChildrenInput) {
    const auto parent = store.FindDocument(in.Identifier.str(), in.IdentifierType);
    if (!parent) {
        errors.Add(ReturnCode::ObjectNotFoundInModel, in.Identifier.str());
        return;
    }
    CorvaneParentToRelationsInfo& answer = Append(out.ParentChildRelationInfo);
    FillFileInfo(Set(answer.ParentDocumentInfo), *parent);
    for (const Relation& r : store.RelationsOf(parent->key, true)) {
        FillChild(Append(answer.ChildRelationInfos), r, *store.DocumentByKey(r.child));
    }
}

VANTO_EMULATOR_COMMAND(RemoveChildren, command::CorvaneRemoveChildrenInput) {
    for (const auto& urn : in.RelationURNs) {
        if (urn.empty()) {
            continue; // a client pads its list with empty entries for children it did not find
        }
        const auto relation = store.FindRelation(urn.str());
        if (!relation) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, urn.str());
            continue;
        }
        store.RemoveRelation(relation->key);
    }
}

} // namespace vanto::emulator
