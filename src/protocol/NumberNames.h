// The names of the connector's numbers (Numbers.h), for people reading what a tool prints: a
// return code by its enumerator's name, the other numbers by what they mean.
#pragma once

#include "protocol/Numbers.h"

#include <cstdint>

namespace vanto::protocol {

struct NumberName {
    std::int32_t number;
    const char* name;
};

// clang-format off
inline constexpr NumberName ReturnCodeNames[] = {
    {ReturnCode::Fail, "Fail"},
    {ReturnCode::FunctionalityUnavailable, "FunctionalityUnavailable"},
    {ReturnCode::UserNotSignedIn, "UserNotSignedIn"},
    {ReturnCode::CommandNotSupported, "CommandNotSupported"},
    {ReturnCode::NotStarted, "NotStarted"},
    {ReturnCode::Offline, "Offline"},
    {ReturnCode::InvalidInput, "InvalidInput"},
    {ReturnCode::ObjectNotFoundInModel, "ObjectNotFoundInModel"},
    {ReturnCode::InvalidObjectType, "InvalidObjectType"},
    {ReturnCode::UnableToDetermineFilePath, "UnableToDetermineFilePath"},
    {ReturnCode::FileDoesNotExist, "FileDoesNotExist"},
    {ReturnCode::AccessDenied, "AccessDenied"},
    {ReturnCode::ObjectLocked, "ObjectLocked"},
    {ReturnCode::DesignRevisionNotFoundInCloud, "DesignRevisionNotFoundInCloud"},
    {ReturnCode::ContainerUnsynchronized, "ContainerUnsynchronized"},
    {ReturnCode::CollaborationSpaceUnavailable, "CollaborationSpaceUnavailable"},
    {ReturnCode::UnsupportedFileType, "UnsupportedFileType"},
    {ReturnCode::DuplicateFileName, "DuplicateFileName"},
    {ReturnCode::DuplicateFileAttachmentName, "DuplicateFileAttachmentName"},
    {ReturnCode::ReferenceExists, "ReferenceExists"},
    {ReturnCode::StatusNotValid, "StatusNotValid"},
    {ReturnCode::PrecedingStatusConstraintNotSatisfied, "PrecedingStatusConstraintNotSatisfied"},
    {ReturnCode::ContainerAlreadySynchronized, "ContainerAlreadySynchronized"},
};
// clang-format on

inline constexpr NumberName ObjectTypeNames[] = {
    {ObjectType::Component, "component"},
    {ObjectType::Lock, "lock"},
    {ObjectType::Document, "document"},
};

inline constexpr NumberName ContainerTypeNames[] = {
    {ContainerType::Project, "project"},
    {ContainerType::Library, "library"},
};

inline constexpr NumberName PropertyTypeNames[] = {{PropertyType::Text, "text"}};

inline constexpr NumberName PermissionNames[] = {
    {Permission::None, "none"},
    {Permission::Read, "read"},
    {Permission::Write, "write"},
};

inline constexpr NumberName CallerStatusNames[] = {
    {CallerStatus::Unchanged, "unchanged"},
    {CallerStatus::CommandNotSupported, "command not supported"},
};

// The number's name in `names`, or null for a number without one.
template <std::size_t N>
constexpr const char* NameOf(const NumberName (&names)[N], std::int32_t number) noexcept {
    for (const NumberName& entry : names) {
        if (entry.number == number) {
            return entry.name;
        }
    }
    return nullptr;
}

} // namespace vanto::protocol
