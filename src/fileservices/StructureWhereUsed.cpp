// Assembly structure (children of a parent document) and where-used queries. Documents are always
// named to the connector by their local file path.
#include "fileservices/StructureWhereUsed.h"

#include "fileservices/CallFrame.h"
#include "fileservices/ReturnCodes.h"
#include "host/GUserFileName.h"

#include <iterator>

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::MCAD::CorvaneAddChildrenInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetChildrenInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryPrimaryObjectsInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneRemoveChildrenInput;
using Corvane::DataTypes::CorvaneAddChildInputInfo;
using Corvane::DataTypes::CorvaneChildRevisionInfo;

// Relation types of the where-used query.
constexpr const char* DrawingOfRelation = "DrawingOf";
constexpr const char* DesignChildRelation = "DesignChildRelation";

// The extensions of the CAD documents that make up a structure.
bool IsStructureDocument(const GUserText& path) {
    static const GUserText Extensions[] = {L"par", L"psm", L"pwd", L"asm"};
    const GUserText extension = GUserFileName(path).GetExtension();
    for (const GUserText& candidate : Extensions) {
        if (extension.EqualsNoCase(candidate)) {
            return true;
        }
    }
    return false;
}

} // namespace

void AddChildRelations(const CorvaneGetChildrenOutput& output, RelationMap& children) {
    // One parent was asked for, so only the first answer counts.
    if (output.ParentChildRelationInfo.empty()) {
        return;
    }
    GUserText key; // carried over from one child to the next, on purpose
    // Each child is offered to the map just after the one before: when the answer lists them in
    // the order of their paths that costs one comparison instead of a search, and otherwise the
    // map searches as it would have.
    auto hint = children.end();
    for (const auto& relation : output.ParentChildRelationInfo.front()->ChildRelationInfos) {
        if (const auto& child = relation->ChildDocumentInfo) {
            for (const Core::TevString& path : child->FilePaths) {
                GUserText candidate = FromNarrow(path);
                if (IsStructureDocument(candidate)) {
                    key = std::move(candidate);
                    break;
                }
            }
        }
        hint = std::next(children.emplace_hint(hint, key, FromNarrow(relation->RelationUrn)));
    }
}

void AddWhereUsedRelations(const CorvaneQueryPrimaryObjectsOutput& output, RelationMap& whereUsed) {
    for (const auto& query : output.QueryRelationInfos) {
        GUserText key;
        for (const auto& relation : query->Relations) {
            if (const auto& related = relation->RelatedDocument) {
                if (!related->FilePaths.empty()) {
                    key = FromNarrow(related->FilePaths.back());
                }
            }
            whereUsed.emplace(key, FromNarrow(relation->RelationUrn));
        }
    }
}

Core::DynamicArray<Core::TevString> RelationUrnsOf(const PathList& childPaths,
                                                   const RelationMap& children) {
    Core::DynamicArray<Core::TevString> urns(childPaths.size());
    std::size_t next = 0;
    for (const GUserText& child : childPaths) {
        const auto found = children.find(child);
        if (found != children.end()) {
            urns[next++] = ToNarrow(found->second);
        }
    }
    return urns;
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::AddChildren(const GUserText& parentPath,
                                                                       const PathList& childPaths) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::AddChildren");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    return frame.Guard(E_FAIL, [&] {
        Core::UniquePtr<CorvaneAddChildInputInfo> parent(new CorvaneAddChildInputInfo());
        parent->ParentIdentifier = ToNarrow(parentPath);
        parent->ParentIdentifierType = vanto::protocol::IdentifierType::FilePath;
        parent->ChildRevisionInfos.resize(childPaths.size());
        for (std::size_t i = 0; i < childPaths.size(); ++i) {
            parent->ChildRevisionInfos[i].reset(new CorvaneChildRevisionInfo());
            parent->ChildRevisionInfos[i]->Identifier = ToNarrow(childPaths[i]);
            parent->ChildRevisionInfos[i]->IdentifierType =
                vanto::protocol::IdentifierType::FilePath;
        }
        CorvaneAddChildrenInput input;
        input.ParentChildRelationInfos.push_back(std::move(parent));
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE ADDING CHILDREN.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::RemoveChildren(
    const GUserText& parentPath, const PathList& childPaths) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::RemoveChildren");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    return frame.Guard(E_FAIL, [&] {
        // The relations are found through the parent's children; a failed look-up finds none.
        RelationMap children;
        frame.Interface().GetChildren(parentPath, &children);
        CorvaneRemoveChildrenInput input;
        // Children not found leave empty texts at the end, and those are sent too.
        input.RelationURNs = RelationUrnsOf(childPaths, children);
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE REMOVING CHILDRENS.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetChildren(const GUserText& parentPath,
                                                                       RelationMap* children) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetChildren");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<RelationMap> map(children);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetChildrenInput input;
        input.Identifier = ToNarrow(parentPath);
        input.IdentifierType = vanto::protocol::IdentifierType::FilePath;
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE GETTING CHILDRENS.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        AddChildRelations(output, *map);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetCorvaneWUResults(
    const PathList& paths, RelationMap* whereUsed, bool drawingsOnly) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetCorvaneWUResults");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<RelationMap> map(whereUsed);
    return frame.Guard(E_FAIL, [&] {
        Core::DynamicArray<Core::TevString> relationTypes;
        relationTypes.push_back(DrawingOfRelation);
        if (!drawingsOnly) {
            relationTypes.push_back(DesignChildRelation);
        }
        // One query per path; the first failing one ends the walk, keeping what came before.
        for (const GUserText& path : paths) {
            CorvaneQueryPrimaryObjectsInput input;
            input.Identifier = ToNarrow(path);
            input.IdentifierType = vanto::protocol::IdentifierType::FilePath;
            input.RelationTypes = relationTypes;
            const auto output = frame.Execute(input);
            if (frame.Failed(output, L"ERROR WHILE GETTING WHERE USED RESULTS.",
                             ErrorCodes::NotReported)) {
                return E_FAIL;
            }
            AddWhereUsedRelations(output, *map);
        }
        return S_OK;
    });
}
