// Containers, permissions and numbering: projects and their synchronisation, the user's access
// to files, new item numbers and revision ids.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

namespace {

std::string RevisionLetters(std::int64_t number) {
    std::string letters;
    while (number > 0) {
        --number;
        letters.insert(letters.begin(), static_cast<char>('A' + number % 26));
        number /= 26;
    }
    return letters;
}

} // namespace

VANTO_EMULATOR_COMMAND(GetNextId, command::CorvaneGetNextIdInput) {
    if (in.NumberOfIds < 1 || in.NumberOfIds > 1000) {
        errors.AddWithoutId(ReturnCode::InvalidInput);
        return;
    }
    if (!IsCadExtension(in.FileExtension.str())) {
        errors.Add(ReturnCode::UnsupportedFileType, in.FileExtension.str());
        return;
    }
    const auto roots = store.RootFolders();
    if (std::none_of(roots.begin(), roots.end(), [&](const std::string& root) {
            return IsUnder(in.DirectoryPath.str(), root);
        })) {
        errors.Add(ReturnCode::UnableToDetermineFilePath, in.DirectoryPath.str());
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

VANTO_EMULATOR_COMMAND(GetNextRevisionId, command::CorvaneGetNextRevisionIdInput) {
    for (const auto& id : in.DesignRevisionIdentifiers) {
        const auto d = store.FindDocument(id->Value.str(), id->IdentifierType);
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, id->Value.str());
            continue;
        }
        CorvaneGetNextRevisionIdInfo& info = Append(out.NextRevisionIdInfo);
        info.RevisionFilepath = T(d->path);
        // Each call hands out a new id: two clients asking at once never get the same one.
        info.Revid = T(RevisionLetters(store.Next("revision:" + std::to_string(d->key))));
    }
}

VANTO_EMULATOR_COMMAND(GetAvailableContainers, command::CorvaneGetAvailableContainersInput) {
    const std::string name = Lower(in.Name.str());
    for (const Container& container : store.AllContainers()) {
        const bool typeWanted =
            in.ContainerType.empty() || std::find(in.ContainerType.begin(), in.ContainerType.end(),
                                                  container.type) != in.ContainerType.end();
        if (!typeWanted || (!in.ReturnUnsynched && !container.synchronised) ||
            (!name.empty() && Lower(container.name).find(name) == std::string::npos)) {
            continue;
        }
        CorvaneContainerInformation& info = Append(out.ContainerInformation);
        info.LocalFilePath = T(container.localPath);
        info.ContainerType = static_cast<std::int32_t>(container.type);
        info.ContainerName = T(container.name);
        info.ContainerId = T(container.containerId);
        info.ContainerUrn = T(container.urn);
        info.ContainerOwnershipType = static_cast<std::int32_t>(container.ownership);
        Set(info.CollaborationSpace).CollaborationSpaceId = T(container.collaborationSpace);
    }
}

VANTO_EMULATOR_COMMAND(AddProjectToSync, command::CorvaneAddProjectToSyncInput) {
    const auto project = store.FindContainer(in.ProjectURN.str());
    if (!project) {
        errors.Add(ReturnCode::ObjectNotFoundInModel, in.ProjectURN.str());
        return;
    }
    if (project->synchronised) {
        errors.Add(ReturnCode::ContainerAlreadySynchronized, in.ProjectURN.str());
        return;
    }
    const auto roots = store.RootFolders();
    const std::string root = roots.empty() ? std::string() : roots.front();
    const char separator = root.find('\\') != std::string::npos ? '\\' : '/';
    store.SynchroniseContainer(project->key,
                               root.empty() ? std::string() : root + separator + project->name);
    out.TaskId = T("TASK-" + std::to_string(store.Next("task")));
}

VANTO_EMULATOR_COMMAND(GetAccessPermissions, command::CorvaneGetAccessPermissionsInput) {
    static const char* const names[] = {"none", "read", "write"};
    for (const auto& path : in.Paths) {
        const auto d = store.FindDocument(path.str(), IdentifierType::FilePath);
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, path.str());
            continue;
        }
        const std::int64_t level = std::clamp<std::int64_t>(store.Permission(d->key, c.user),
                                                            Permission::None, Permission::Write);
        CorvaneAccessPermissionsInfo& info = Append(out.AccessPermissionsInfo);
        info.Path = path;
        info.AccessPermission = static_cast<std::int32_t>(level);
        info.MoreInfo = names[level];
    }
}

} // namespace vanto::emulator
