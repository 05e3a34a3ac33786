#include "fileservices/ReturnCodes.h"

#include "fileservices/CallFrame.h"

namespace vanto::fileservices {

namespace {

struct CodeMessage {
    std::uint32_t code;
    const wchar_t* message;
};

// 15 has no message: the connector's code for it is passed over in silence.
// clang-format off
constexpr CodeMessage Messages[] = {
    {1, L"Service is failed. - ReturnCodes_FAIL"},
    {2, L"Service is not available - ReturnCodes_FUNCTIONALITY_UNAVAILABLE"},
    {3, L"User is not signed in - ReturnCodes_USER_NOT_SIGNEDIN"},
    {4, L"Command is not supported - ReturnCodes_COMMAND_NOT_SUPPORTED"},
    {5, L"Corvane is not started - ReturnCodes_NOT_STARTED"},
    {6, L"Corvane is offline. - ReturnCodes_OFFLINE"},
    {7, L"The provided input is invalid - ReturnCodes_INVALID_INPUT"},
    {8, L"Object is not found in data model - ReturnCodes_OBJECT_NOT_FOUND_IN_MODEL"},
    {9, L"Invalid object type given - ReturnCodes_INVALID_OBJECT_TYPE"},
    {10, L"Unable to determine local file path - ReturnCodes_UNABLE_TO_DETERMINE_FILE_PATH"},
    {11, L"Local file path does not exist - ReturnCodes_FILE_DOES_NOT_EXIST"},
    {12, L"User does not have access permissions - ReturnCodes_ACCESS_DENIED"},
    {13, L"Object is locked - ReturnCodes_OBJECT_LOCKED"},
    {14, L"Design revision is not found in cloud - ReturnCodes_DESIGN_REVISION_NOT_FOUND_IN_CLOUD"},
    {16, L"Container has not been selected for synchronization by the user - ReturnCodes_CONTAINER_UNSYNCHRONIZED"},
    {17, L"No collaboration space found for the user - ReturnCodes_COLLABORATIONSPACE_UNAVAILABLE"},
    {18, L"File Type is not supported - ReturnCodes_UNSUPPORTED_FILE_TYPE"},
    {19, L"A file with the same name already exists at the location - ReturnCodes_DUPLICATE_FILENAME_FOUND"},
    {20, L"A file with the same name as an attachment already exists at the location - ReturnCodes_DUPLICATE_FILEATTACHMENT_NAME_FOUND"},
    {21, L"The reference already exists in the container - ReturnCodes_REFERENCE_EXISTS"},
    {100, L"Status is not valid for the given file - ReturnCodes_STATUS_NOT_VALID"},
    {101, L"Preceding Status constraint not satisfied - ReturnCodes_PRECEDING_STATUS_CONSTRAINT_NOT_SATISFIED"},
    {102, L"Container is already synchronized - ReturnCodes_CONTAINER_ALREADY_SYNCHRONIZED"},
};
// clang-format on

} // namespace

const wchar_t* ReturnCodeMessage(std::uint32_t code) noexcept {
    for (const CodeMessage& entry : Messages) {
        if (entry.code == code) {
            return entry.message;
        }
    }
    return nullptr;
}

} // namespace vanto::fileservices

// Reports inside its caller's scope record; it opens none and tests no session.
HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::LogErrors(std::uint32_t* returnCode) {
    if (returnCode == nullptr) {
        return S_OK;
    }
    if (const wchar_t* message = vanto::fileservices::ReturnCodeMessage(*returnCode)) {
        try {
            const vanto::fileservices::CallFrame frame(*this, nullptr);
            frame.Error(message);
        } catch (...) {
            // A log line that cannot be written (no memory left) is not the caller's failure.
        }
    }
    return S_OK;
}
