#include "Commands.h"

namespace vanto::emulator {

using namespace command;

void ErrorList::Add(std::int32_t code, std::string_view id) {
    for (auto& [known, ids] : entries_) {
        if (known == code) {
            ids.emplace_back(id);
            return;
        }
    }
    entries_.push_back({code, {std::string(id)}});
}

std::string ErrorAnswer(std::int32_t code, std::string_view id) {
    CommandOutputBase out;
    ErrorList errors;
    if (id.empty()) {
        errors.AddWithoutId(code);
    } else {
        errors.Add(code, id);
    }
    errors.WriteTo(out);
    return vanto::protocol::WriteRecord(&out, vanto::protocol::SchemaOf<CommandOutputBase>()).str();
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

} // namespace vanto::emulator
