// Containers and their synchronisation, access permissions, and item and revision numbering.
#include "fileservices/ContainersNumbering.h"

#include "fileservices/CallFrame.h"
#include "fileservices/ReturnCodes.h"

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::CorvaneAddProjectToSyncInput;
using Corvane::CommandIO::DataManagement::CorvaneGetAccessPermissionsInput;
using Corvane::CommandIO::DataManagement::CorvaneGetAvailableContainersInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetNextIdInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetNextRevisionIdInput;
using Corvane::DataTypes::CorvaneDesignIdentifier;

// The property each numbering command generates.
constexpr const char* ItemNumberProperty = "number";
constexpr const char* RevisionIdProperty = "revid";

// A connector that lacks the command is told to the caller through its status.
void FlagUnsupportedCommand(const CommandOutputBase& output, std::int32_t& status) {
    for (const auto& error : output.Errors) {
        if (error->ErrorCode == vanto::protocol::ReturnCode::CommandNotSupported) {
            status = vanto::protocol::CallerStatus::CommandNotSupported;
        }
    }
}

} // namespace

void AppendContainers(const CorvaneGetAvailableContainersOutput& output,
                      ContainerList& containers) {
    for (const auto& container : output.ContainerInformation) {
        ContainerEntry entry;
        entry.localFilePath = FromUtf8(container->LocalFilePath);
        entry.containerName = FromUtf8(container->ContainerName);
        entry.containerId = FromNarrow(container->ContainerId);
        entry.containerUrn = FromNarrow(container->ContainerUrn);
        if (container->CollaborationSpace) {
            entry.collaborationSpaceId =
                FromNarrow(container->CollaborationSpace->CollaborationSpaceId);
        }
        containers.push_back(std::move(entry));
    }
}

void AddPermissions(const CorvaneGetAccessPermissionsOutput& output,
                    AccessPermissionMap& permissions) {
    for (const auto& info : output.AccessPermissionsInfo) {
        permissions.emplace(FromNarrow(info->Path), info->AccessPermission);
    }
}

void AppendItemIds(const CorvaneGetNextIdOutput& output, ItemIdRevisionList& ids) {
    for (const auto& info : output.NextIdInfo) {
        ids.emplace_back(FromNarrow(info->Number), FromNarrow(info->Revid));
    }
}

void TakeFirstRevisionId(const CorvaneGetNextRevisionIdOutput& output, GUserText& revisionId) {
    if (!output.NextRevisionIdInfo.empty()) {
        revisionId = FromNarrow(output.NextRevisionIdInfo.front()->Revid);
    }
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetAvailableContainers(
    ContainerList* containers, std::int32_t* status) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetAvailableContainers");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<ContainerList> list(containers);
    const Target<std::int32_t> commandStatus(status);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetAvailableContainersInput input;
        input.ContainerType.push_back(vanto::protocol::ContainerType::Project);
        input.ContainerType.push_back(vanto::protocol::ContainerType::Library);
        input.ReturnUnsynched = false;
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE GETTING CORVANE CONTAINER INFORMATION.",
                         ErrorCodes::Reported)) {
            FlagUnsupportedCommand(output, *commandStatus);
            return E_FAIL;
        }
        AppendContainers(output, *list);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::AddProjectToSync(
    const GUserText& projectUrn, std::int32_t* status) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::AddProjectToSync");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<std::int32_t> commandStatus(status);
    return frame.Guard(E_FAIL, [&] {
        CorvaneAddProjectToSyncInput input;
        input.ProjectURN = ToNarrow(projectUrn);
        const auto output = frame.Execute(input);
        // The task the connector starts is its own business.
        if (frame.Failed(output, L"ERROR WHILE ADDING PROJECT TO SYNC.", ErrorCodes::Reported)) {
            FlagUnsupportedCommand(output, *commandStatus);
            return E_FAIL;
        }
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetFileAccessPermissions(
    const PathList& paths, AccessPermissionMap* permissions) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetFileAccessPermissions");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<AccessPermissionMap> map(permissions);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetAccessPermissionsInput input;
        AppendNarrow(input.Paths, paths);
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"Error getting Access Permissions.", ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        AddPermissions(output, *map);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GenerateItemIDAndRevision(
    const GUserText& directoryPath, const GUserText& fileExtension, std::int32_t& count,
    ItemIdRevisionList* ids) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GenerateItemIDAndRevision");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    // Numbers are generated for a file type in a folder; without either there is nothing to ask.
    if (directoryPath.IsEmpty() || fileExtension.IsEmpty()) {
        return E_FAIL;
    }
    const Target<ItemIdRevisionList> list(ids);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetNextIdInput input;
        input.FileExtension = ToNarrow(fileExtension);
        input.NumberOfIds = count;
        input.GetInitialRevId = true;
        input.Properties.push_back(ItemNumberProperty);
        input.DirectoryPath = ToNarrow(directoryPath);
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE GENERATING ITEMID AND REVISION.",
                         ErrorCodes::Reported)) {
            return E_FAIL;
        }
        AppendItemIds(output, *list);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GenerateNextRevisionID(
    const GUserText& designIdentifier, GUserText* revisionId) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GenerateNextRevisionID");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<GUserText> revision(revisionId);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetNextRevisionIdInput input;
        Core::UniquePtr<CorvaneDesignIdentifier> identifier(new CorvaneDesignIdentifier());
        identifier->Value = ToNarrow(designIdentifier);
        identifier->IdentifierType = vanto::protocol::IdentifierType::FilePath;
        input.DesignRevisionIdentifiers.push_back(std::move(identifier));
        input.Properties.push_back(RevisionIdProperty);
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE GENERATING NEXT REVISION.", ErrorCodes::Reported)) {
            return E_FAIL;
        }
        TakeFirstRevisionId(output, *revision);
        return S_OK;
    });
}
