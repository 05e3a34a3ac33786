// Public interface of the VANTO component: the class and interface identifiers, the session and
// file-services interfaces (real and mock share these layouts) and the data they exchange.
#pragma once

#include "com/ComBase.h"
#include "host/GUserText.h"

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

// {BBC1F925-41EF-49F8-B570-85B0967AEA0F}
inline constexpr CLSID CLSID_VANTOManager = {
    0xbbc1f925, 0x41ef, 0x49f8, {0xb5, 0x70, 0x85, 0xb0, 0x96, 0x7a, 0xea, 0x0f}};
// {6CDB8939-8B48-4481-A343-3E3CB479907C}
inline constexpr IID IID_IVANTOSession = {
    0x6cdb8939, 0x8b48, 0x4481, {0xa3, 0x43, 0x3e, 0x3c, 0xb4, 0x79, 0x90, 0x7c}};
// {08C8C39F-A02E-4F34-9A37-5F0977DD4649}
inline constexpr IID IID_IVANTOFileServices = {
    0x08c8c39f, 0xa02e, 0x4f34, {0x9a, 0x37, 0x5f, 0x09, 0x77, 0xdd, 0x46, 0x49}};
// {B2CFED30-F347-42A7-83DE-6B606D346F7C}
inline constexpr IID IID_IVANTOMockSession = {
    0xb2cfed30, 0xf347, 0x42a7, {0x83, 0xde, 0x6b, 0x60, 0x6d, 0x34, 0x6f, 0x7c}};
// {9000197B-CDC2-4AC6-8F1A-19AE0BD41868}
inline constexpr IID IID_IVANTOMockFileServices = {
    0x9000197b, 0xcdc2, 0x4ac6, {0x8f, 0x1a, 0x19, 0xae, 0x0b, 0xd4, 0x18, 0x68}};

// ---- Session data ------------------------------------------------------------------------------

// What the connector says about the signed-in session.
struct SessionInfo {
    GUserText authenticatedUserName;
    GUserText corvaneLogPath;
    GUserText cloudGatewayLogPath;
    GUserText userEmail;
};

// The host's record of the logged-on user. The real session fills `email`; the mock fills the
// first two texts with the operating-system user name.
struct LoggedInUserInfo {
    GUserText loginName;
    GUserText displayName;
    GUserText email;
};

using RootFolderSet = std::set<GUserText>;

// Called while waiting for the connector; clearing *stopAtTimeout extends the wait past the
// time-out for that poll.
using StopAtTimeoutCallback = void (*)(bool* stopAtTimeout);

// ---- File-service data -------------------------------------------------------------------------

struct FileLockStatus {
    bool isCheckedOut = false;
    bool isCheckedOutByCurrentUser = false;
    bool isNewVersionAvailable = false;
    GUserText checkedOutBy;
};
// Keyed by full path; paths that differ only in letter case are the same file.
using FileLockStatusMap = std::map<GUserText, FileLockStatus, GUserTextLessNoCase>;

struct FileCheckInEntry {
    GUserText fileName;
    std::int32_t errorCode = 0;
    GUserText lockedBy;
};
using FileCheckInList = std::vector<FileCheckInEntry>;

using PathList = std::vector<GUserText>;
using PathMonitoredMap = std::map<GUserText, bool>;
using FileUidPathMap = std::map<GUserText, GUserText>;

struct DocumentStamp {
    GUserText consistencyStamp;
    GUserText documentId;
};
using DocumentStampMap = std::map<GUserText, DocumentStamp, GUserTextLessNoCase>;

struct FileStatusInformation {
    bool isCheckedOut = false;
    bool isCheckedOutByMe = false;
    GUserText checkedOutBy;
    std::int32_t isNewVersionAvailable = 0;
    std::int32_t isNewRevisionAvailable = 0;
};

struct FileContext {
    GUserText componentId;
    GUserText documentId;
    GUserText collaborationSpaceId;
    GUserText containerId;
    GUserText componentRevisionId;
    GUserText componentRevisionUrn;
    GUserText documentUrn;
    GUserText componentUrn;
};
struct FileContextEntry {
    GUserText path;
    FileContext context;
};
using FileContextList = std::vector<FileContextEntry>;

struct RevisionAttachment {
    GUserText documentPath;
    GUserText revisionId;
};
using RevisionAttachmentList = std::vector<RevisionAttachment>;

struct ContainerEntry {
    GUserText localFilePath;
    GUserText containerName;
    GUserText containerId;
    GUserText containerUrn;
    GUserText collaborationSpaceId;
};
using ContainerList = std::vector<ContainerEntry>;

using AccessPermissionMap = std::map<GUserText, std::int32_t>;

// (item number, revision id)
using ItemIdRevisionList = std::vector<std::pair<GUserText, GUserText>>;

struct PropertyEntry {
    GUserText name;
    std::int32_t type = 0;
    std::vector<GUserText> values;
};
struct ObjectTypeProperties {
    std::int32_t objectType = 0;
    std::vector<PropertyEntry> properties;
};
struct FilePropertyEntry {
    GUserText filePath;
    std::vector<ObjectTypeProperties> objectTypes;
};
using FilePropertyList = std::vector<FilePropertyEntry>;
using PropertyNameSet = std::set<GUserText>;

// child or related document path -> relation URN
using RelationMap = std::map<GUserText, GUserText>;

// ---- Interfaces --------------------------------------------------------------------------------

// The session interface; IID_IVANTOSession gives the connector's, IID_IVANTOMockSession the mock.
struct IVANTOSession : IUnknown {
    virtual bool STDMETHODCALLTYPE IsConnected(bool force) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetRootFolders(RootFolderSet* rootFolders) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) = 0;
    virtual bool STDMETHODCALLTYPE IsCorvaneRunning() = 0;
    virtual bool STDMETHODCALLTYPE IsCorvaneInstalled() = 0;
    virtual bool STDMETHODCALLTYPE StartCorvaneAndWaitForReadyState(
        int timeoutMs, bool* timedOut, StopAtTimeoutCallback callback) = 0;
    virtual void STDMETHODCALLTYPE DeRegisterFromCorvane() = 0;
    virtual bool STDMETHODCALLTYPE IsCorvaneInOffLineMode() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSessionInfo(SessionInfo* info) = 0;

protected:
    ~IVANTOSession() = default;
};

// The file-services interface; IID_IVANTOFileServices gives the connector's,
// IID_IVANTOMockFileServices the mock.
struct IVANTOFileServices : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CheckIn(FileCheckInList* files) = 0;
    virtual HRESULT STDMETHODCALLTYPE CheckOut(FileLockStatusMap* files) = 0;
    virtual HRESULT STDMETHODCALLTYPE IsValidCorvaneFile(const PathList& paths,
                                                         PathMonitoredMap* monitored) = 0;
    virtual bool STDMETHODCALLTYPE IsValidCorvaneFile(const GUserText& path) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStatusInformation(const GUserText& path,
                                                           FileStatusInformation* status) = 0;
    virtual bool STDMETHODCALLTYPE IsNewRevisionAvailable(const GUserText& path) = 0;
    virtual bool STDMETHODCALLTYPE IsNewVersionAvailable(const GUserText& path) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCheckOutStatus(FileLockStatusMap* files,
                                                        bool checkNewVersion) = 0;
    virtual HRESULT STDMETHODCALLTYPE DownloadLatestVersion(const GUserText& path) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    AttachDocumentToRevision(RevisionAttachmentList attachments) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDocumentConsistencyStamp(DocumentStampMap* stamps) = 0;
    virtual bool STDMETHODCALLTYPE IsFileSynchronized(const GUserText& path) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFilePath(FileUidPathMap* paths) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetContextInformation(const PathList& paths,
                                                            FileContextList* contexts) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAvailableContainers(ContainerList* containers,
                                                             std::int32_t* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddProjectToSync(const GUserText& projectUrn,
                                                       std::int32_t* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetFileAccessPermissions(const PathList& paths, AccessPermissionMap* permissions) = 0;
    virtual HRESULT STDMETHODCALLTYPE GenerateItemIDAndRevision(const GUserText& directoryPath,
                                                                const GUserText& fileExtension,
                                                                std::int32_t& count,
                                                                ItemIdRevisionList* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE GenerateNextRevisionID(const GUserText& designIdentifier,
                                                             GUserText* revisionId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProperties(const PathList& paths,
                                                    const PropertyNameSet& filter,
                                                    FilePropertyList* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDataObject(const GUserText& primaryKey,
                                                    const GUserText& data) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDesignRevisions(const GUserText& designName,
                                                         PathList* revisionNames) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddChildren(const GUserText& parentPath,
                                                  const PathList& childPaths) = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveChildren(const GUserText& parentPath,
                                                     const PathList& childPaths) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChildren(const GUserText& parentPath,
                                                  RelationMap* children) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCorvaneWUResults(const PathList& paths,
                                                          RelationMap* whereUsed,
                                                          bool drawingsOnly) = 0;
    virtual HRESULT STDMETHODCALLTYPE LogErrors(std::uint32_t* returnCode) = 0;

protected:
    ~IVANTOFileServices() = default;
};

// The two entry points the component exports.
extern "C" {
#ifndef _WIN32
HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv);
HRESULT STDAPICALLTYPE DllCanUnloadNow();
#endif
using PFN_DllGetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);
using PFN_DllCanUnloadNow = HRESULT(STDAPICALLTYPE*)();
}
