/// @file
/// Public interface of the VANTO component: the class and interface identifiers, the session and
/// file-services interfaces (the connector's and the mock share these layouts), the data they
/// exchange and the module's two entry points.
///
/// @mainpage VANTO reference for host developers
///
/// VANTO is an in-process COM component. A CAD host loads the module, asks its class factory for
/// the manager object and, from the manager, for two interfaces:
///
/// - IVANTOSession: is the Corvane connector installed, running, ready, offline; register this
///   process with it, start it and wait for it; who is signed in; which folders it keeps.
/// - IVANTOFileServices: product-data-management work on local files through the connector:
///   check-out and check-in, file identity and context, versions, properties, containers,
///   permissions, numbering, assembly structure and where-used.
///
/// Each interface comes twice: IID_IVANTOSession and IID_IVANTOFileServices give the connector's,
/// IID_IVANTOMockSession and IID_IVANTOMockFileServices a mock that answers from the XML file
/// `Z:\PDM\VANTO\Dev\VANTOInput.xml` and never contacts the connector. The identifier the host
/// asks for is the only switch between the two.
///
/// @section start Getting started
///
/// 1. Load the module and call DllGetClassObject(CLSID_VANTOManager, IID_IClassFactory, ...), or
///    CoCreateInstance where the module is registered.
/// 2. IClassFactory::CreateInstance(nullptr, IID_IUnknown, ...) gives the manager; release the
///    factory.
/// 3. QueryInterface the manager for the session and the file services.
/// 4. Connect: IVANTOSession::IsConnected, and when that answers false,
///    IVANTOSession::StartCorvaneAndWaitForReadyState. Until a session is registered the file
///    services send nothing (see "Not connected" below).
/// 5. Call the file services.
/// 6. Release every interface and the manager: the last release deregisters the process from the
///    connector. Keep the module loaded: DllCanUnloadNow answers S_FALSE once a manager has gone.
///
/// `examples/host/` holds two complete hosts: `host.cpp` (one check-out on the mock) and
/// `checkout.cpp` (connect or start the connector, check out, act on each file's outcome, check
/// in, release).
///
/// @section paths The four paths of a call
///
/// Every method of IVANTOFileServices that talks to the connector sends one command (named under
/// "Connector command" in its entry) and ends on one of four paths:
///
/// - **Success**: the answer carries no errors; the results are added to the caller's containers.
/// - **Answer with errors**: the connector refused. Most methods return E_FAIL and leave the
///   caller's containers as they were; each entry says where it differs. The component writes the
///   reason to the host's developer log (the method's failure line and, where the entry says so,
///   one LogErrors line per return code).
/// - **Not connected**: the connector has granted no session id yet (or the manager has no
///   connector proxy). Nothing is sent, the line "Corvane session is not a valid session." is
///   logged and the method returns its not-connected result. That result differs from method to
///   method on purpose (E_FAIL for CheckIn, CheckOut, the list form of IsValidCorvaneFile and
///   GetStatusInformation; S_OK for most others; false or true for the methods that answer a
///   bool): each entry names it. After IVANTOSession::DeRegisterFromCorvane the file services
///   still count as connected: the session id is kept and still sent.
/// - **Exception**: a failure to reach the connector (no connector, lost connection, time-out) or
///   to read its answer. It is caught inside the method, logged as "Corvane session is not a valid
///   session - exception from Execute call : " followed by its text, and the method returns its
///   failure result (E_FAIL, or the bool its entry names). What the method had already added to
///   the caller's containers stays. Three methods have no guard of their own and let an exception
///   of their own steps through to the caller: IVANTOFileServices::GetStatusInformation,
///   IVANTOFileServices::GetCheckOutStatus and IVANTOFileServices::GetDocumentConsistencyStamp
///   (the methods they call catch their own).
///
/// @section containers Containers
///
/// The caller owns every container it passes. Methods add to them in place and never clear them
/// first: a list gets entries appended, a map gets keys inserted, and an insert never replaces
/// the value of a key that is already there. Methods that take a map as in-out (CheckOut,
/// GetCheckOutStatus, GetFilePath, GetDocumentConsistencyStamp) update the values of the keys the
/// caller put in and never add or remove keys. An out pointer may be null: the results are then
/// dropped.
///
/// @section threads Threads and state
///
/// The component has no threads or locks of its own. Every call runs on the caller's thread and
/// blocks until the connector answers; use the component from one thread. The registration
/// (session id, registered and offline flags) belongs to the process: every manager shares it,
/// and it outlives the manager that made it.
#pragma once

#include "com/ComBase.h"
#include "host/GUserText.h"

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

/// The class of the manager object, the one object the module creates.
/// {BBC1F925-41EF-49F8-B570-85B0967AEA0F}
inline constexpr CLSID CLSID_VANTOManager = {
    0xbbc1f925, 0x41ef, 0x49f8, {0xb5, 0x70, 0x85, 0xb0, 0x96, 0x7a, 0xea, 0x0f}};
/// The connector's session interface, IVANTOSession.
/// {6CDB8939-8B48-4481-A343-3E3CB479907C}
inline constexpr IID IID_IVANTOSession = {
    0x6cdb8939, 0x8b48, 0x4481, {0xa3, 0x43, 0x3e, 0x3c, 0xb4, 0x79, 0x90, 0x7c}};
/// The connector's file services, IVANTOFileServices.
/// {08C8C39F-A02E-4F34-9A37-5F0977DD4649}
inline constexpr IID IID_IVANTOFileServices = {
    0x08c8c39f, 0xa02e, 0x4f34, {0x9a, 0x37, 0x5f, 0x09, 0x77, 0xdd, 0x46, 0x49}};
/// The mock session: IVANTOSession answered without the connector.
/// {B2CFED30-F347-42A7-83DE-6B606D346F7C}
inline constexpr IID IID_IVANTOMockSession = {
    0xb2cfed30, 0xf347, 0x42a7, {0x83, 0xde, 0x6b, 0x60, 0x6d, 0x34, 0x6f, 0x7c}};
/// The mock file services: IVANTOFileServices answered from the mock's XML input file.
/// {9000197B-CDC2-4AC6-8F1A-19AE0BD41868}
inline constexpr IID IID_IVANTOMockFileServices = {
    0x9000197b, 0xcdc2, 0x4ac6, {0x8f, 0x1a, 0x19, 0xae, 0x0b, 0xd4, 0x18, 0x68}};

// ---- Session data ------------------------------------------------------------------------------

/// What the connector says about the signed-in session (IVANTOSession::GetSessionInfo).
struct SessionInfo {
    GUserText authenticatedUserName; ///< The signed-in user's name, as lock holders are named.
    GUserText corvaneLogPath;        ///< The connector's own log file.
    GUserText cloudGatewayLogPath;   ///< The log file of the connector's cloud gateway.
    GUserText userEmail;             ///< The signed-in user's e-mail address.
};

/// The host's record of the logged-on user (IVANTOSession::GetCurrentLoggedInUserInfo). The
/// connector's session fills `email` only; the mock fills the first two texts only.
struct LoggedInUserInfo {
    GUserText loginName;   ///< Mock: the operating system's user name.
    GUserText displayName; ///< Mock: the operating system's user name.
    GUserText email;       ///< Connector: the signed-in user's e-mail address.
};

/// The connector's root folders: the local folders it keeps in step with the cloud.
using RootFolderSet = std::set<GUserText>;

/// Called on every poll while StartCorvaneAndWaitForReadyState waits for the connector (every
/// 100 ms). `*stopAtTimeout` comes in true; clearing it keeps waiting past the time-out for that
/// poll, leaving it gives up once the time-out has passed.
using StopAtTimeoutCallback = void (*)(bool* stopAtTimeout);

// ---- File-service data -------------------------------------------------------------------------

/// The lock state of one file, owned by the caller and updated in place by
/// IVANTOFileServices::CheckOut and IVANTOFileServices::GetCheckOutStatus.
struct FileLockStatus {
    bool isCheckedOut = false;              ///< Somebody holds the file's lock.
    bool isCheckedOutByCurrentUser = false; ///< The holder is the signed-in user (names compared
                                            ///< ignoring case).
    bool isNewVersionAvailable = false;     ///< The cloud holds a newer version (filled only by
                                            ///< GetCheckOutStatus when asked to).
    GUserText checkedOutBy;                 ///< The holder's name; may be kept when the lock goes.
};
/// Lock states keyed by the file's full path; paths that differ only in letter case are the same
/// file.
using FileLockStatusMap = std::map<GUserText, FileLockStatus, GUserTextLessNoCase>;

/// One file to check in (IVANTOFileServices::CheckIn).
struct FileCheckInEntry {
    GUserText fileName;         ///< In: the file's full path.
    std::int32_t errorCode = 0; ///< Out: the connector's return code for this file, 0 when it was
                                ///< checked in (IVANTOFileServices::LogErrors logs its meaning).
    GUserText lockedBy;         ///< Out: the lock holder the connector names for this file.
};
/// Files to check in, in the caller's order.
using FileCheckInList = std::vector<FileCheckInEntry>;

/// Full paths of files or folders, or other texts where a method says so.
using PathList = std::vector<GUserText>;
/// Path to whether the connector monitors it (IVANTOFileServices::IsValidCorvaneFile).
using PathMonitoredMap = std::map<GUserText, bool>;
/// Document or component identifier (key, set by the caller) to the file's local path (value,
/// filled by IVANTOFileServices::GetFilePath).
using FileUidPathMap = std::map<GUserText, GUserText>;

/// What identifies one version of a document (IVANTOFileServices::GetDocumentConsistencyStamp).
struct DocumentStamp {
    GUserText consistencyStamp; ///< The version the local file holds.
    GUserText documentId;       ///< The document's identifier in the cloud.
};
/// Stamps keyed by the file's full path, ignoring letter case.
using DocumentStampMap = std::map<GUserText, DocumentStamp, GUserTextLessNoCase>;

/// The status of one file (IVANTOFileServices::GetStatusInformation). The connector's file
/// services fill the two flags at the end only; the mock fills `isCheckedOutByMe` and
/// `checkedOutBy` only. Fields not filled keep what the caller put in.
struct FileStatusInformation {
    bool isCheckedOut = false;               ///< Not filled by either implementation.
    bool isCheckedOutByMe = false;           ///< Mock: the holder is the mock's user.
    GUserText checkedOutBy;                  ///< Mock: the holder named in the mock's input file.
    std::int32_t isNewVersionAvailable = 0;  ///< Connector: 1 when the cloud holds a newer version.
    std::int32_t isNewRevisionAvailable = 0; ///< Connector: always 0 in this release.
};

/// Where a file lives in the cloud (IVANTOFileServices::GetContextInformation).
struct FileContext {
    GUserText componentId;          ///< The component the file belongs to.
    GUserText documentId;           ///< The document.
    GUserText collaborationSpaceId; ///< The collaboration space of its container.
    GUserText containerId;          ///< The container (project) it belongs to.
    GUserText componentRevisionId;  ///< The component's revision.
    GUserText componentRevisionUrn; ///< The component revision's URN.
    GUserText documentUrn;          ///< The document's URN.
    GUserText componentUrn;         ///< The component's URN.
};
/// One file path with its cloud context.
struct FileContextEntry {
    GUserText path;      ///< A local path of the file, as the connector names it.
    FileContext context; ///< Its context.
};
/// Contexts, one entry per local path the connector names.
using FileContextList = std::vector<FileContextEntry>;

/// A document to attach to a revision (IVANTOFileServices::AttachDocumentToRevision).
struct RevisionAttachment {
    GUserText documentPath; ///< The document's full path.
    GUserText revisionId;   ///< The revision to attach it to.
};
/// Documents to attach.
using RevisionAttachmentList = std::vector<RevisionAttachment>;

/// One container (project or library) the signed-in user can reach
/// (IVANTOFileServices::GetAvailableContainers).
struct ContainerEntry {
    GUserText localFilePath;        ///< Its local folder.
    GUserText containerName;        ///< Its name.
    GUserText containerId;          ///< Its identifier.
    GUserText containerUrn;         ///< Its URN (what IVANTOFileServices::AddProjectToSync takes).
    GUserText collaborationSpaceId; ///< Its collaboration space; empty when none is named.
};
/// Containers, in the connector's order.
using ContainerList = std::vector<ContainerEntry>;

/// Path to the signed-in user's access to it: 0 none, 1 read, 2 write
/// (IVANTOFileServices::GetFileAccessPermissions).
using AccessPermissionMap = std::map<GUserText, std::int32_t>;

/// Generated identifiers: (item number, its first revision id), in the connector's order
/// (IVANTOFileServices::GenerateItemIDAndRevision).
using ItemIdRevisionList = std::vector<std::pair<GUserText, GUserText>>;

/// One property of a file (IVANTOFileServices::GetProperties).
struct PropertyEntry {
    GUserText name;                ///< The property's name, for example "LockedBy".
    std::int32_t type = 0;         ///< The connector's type of the property (0: text).
    std::vector<GUserText> values; ///< Its values, in the connector's order; may be empty.
};
/// The properties of one group of a file.
struct ObjectTypeProperties {
    /// The group: 0 the component (name, revision, number and the custom properties), 1 the lock
    /// ("LockedBy" and when it was taken), 2 the document version ("consistencyStamp",
    /// "DocumentId").
    std::int32_t objectType = 0;
    std::vector<PropertyEntry> properties; ///< The group's properties that passed the filter.
};
/// The properties of one file.
struct FilePropertyEntry {
    GUserText filePath;                            ///< The file's path, as the connector names it.
    std::vector<ObjectTypeProperties> objectTypes; ///< Its groups, in the connector's order.
};
/// Properties, one entry per file the connector answers for.
using FilePropertyList = std::vector<FilePropertyEntry>;
/// Property names to keep (compared exactly); empty keeps every property.
using PropertyNameSet = std::set<GUserText>;

/// Document path to the URN of its relation: a child's path (IVANTOFileServices::GetChildren) or
/// the path of a document that uses a file (IVANTOFileServices::GetCorvaneWUResults).
using RelationMap = std::map<GUserText, GUserText>;

// ---- Interfaces --------------------------------------------------------------------------------

/// The session: finds, starts and registers with the Corvane connector, and asks it about the
/// signed-in user and its folders.
///
/// IID_IVANTOSession gives the connector's implementation, IID_IVANTOMockSession the mock, which
/// never contacts the connector and writes no log record. No method lets an exception out.
/// QueryInterface, AddRef and Release act on the manager: any of its interfaces can be asked for.
struct IVANTOSession : IUnknown {
    /// Whether the connector is connected, registering this process with it the first time.
    ///
    /// The first call of the process, and every call with `force`, does the work: it clears the
    /// offline flag, registers the process with the connector when the connector is ready and no
    /// session is registered yet (the connector's root folder is then stored in the host's
    /// per-user setting "CorvaneRootFolderPath"), and asks the connector for its connection
    /// status. Later calls without `force` answer whether a session is registered, without asking
    /// the connector.
    ///
    /// @param[in] force  Ask the connector even after the first call.
    /// @return True when the connector answers the status request without errors. False when the
    /// connector is not ready or not reachable, when it answers with errors (an "offline" error
    /// sets the offline flag, see IsCorvaneInOffLineMode), or after an exception.
    /// @par Connector commands
    /// Registration, then `GETCORVANEROOTFOLDERS` and `GETSESSIONINFO`; `GETCONNECTIONSTATUS`.
    /// @remarks A failure to reach the connector during registration is logged ("Exception
    /// occurred in API : ...") and the call goes on to the status request. False does not start
    /// the connector: call StartCorvaneAndWaitForReadyState for that.
    /// Mock: always true.
    virtual bool STDMETHODCALLTYPE IsConnected(bool force) = 0;

    /// Adds the connector's root folders to `rootFolders`.
    ///
    /// @param[out] rootFolders  Folders are inserted; the set is not cleared first. May be null.
    /// @return S_OK on success. E_FAIL when the answer carries errors (the set is left as it was
    /// and nothing is logged). S_OK when not connected and S_OK after an exception, in both cases
    /// with the set left as it was.
    /// @par Connector command
    /// `GETCORVANEROOTFOLDERS`
    /// @remarks Mock: inserts the `RootFolder` of the input file, creating that folder when it
    /// does not exist; E_OUTOFMEMORY only when the mock's store cannot be made.
    virtual HRESULT STDMETHODCALLTYPE GetRootFolders(RootFolderSet* rootFolders) = 0;

    /// Fills in what the component knows of the logged-on user.
    ///
    /// @param[in,out] user  Connector: `email` is set to the signed-in user's e-mail, the other
    /// texts are left as they are. Mock: `loginName` and `displayName` are set to the operating
    /// system's user name (read once per process), `email` is left. May be null.
    /// @return Always S_OK. Before the connector has granted a session id nothing is asked and
    /// `user` is left as it is; an exception is logged.
    /// @par Connector command
    /// `GETSESSIONINFO`
    /// @remarks With a session id held, the call also marks the session registered, so that the
    /// manager deregisters it when it goes.
    virtual HRESULT STDMETHODCALLTYPE GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) = 0;

    /// Whether the connector's process is running.
    ///
    /// @return True when it runs; false when it does not, or when the manager has no connector
    /// proxy. Mock: always true.
    virtual bool STDMETHODCALLTYPE IsCorvaneRunning() = 0;

    /// Whether the connector is installed on this machine.
    ///
    /// @return True when it is installed. Mock: always true.
    virtual bool STDMETHODCALLTYPE IsCorvaneInstalled() = 0;

    /// Starts the connector when it is not running, waits until it is ready, and registers this
    /// process with it.
    ///
    /// Any registration left from before is ended first; the new registration counts as made as
    /// soon as the connector has answered it. Then the connection status is asked, as
    /// IsConnected does.
    ///
    /// @param[in] timeoutMs  How long to wait for the connector to become ready, in milliseconds.
    /// The wait polls every 100 ms and gives up once more than `timeoutMs` has passed.
    /// @param[out] timedOut  Set to true when the wait gave up, false otherwise. May be null.
    /// @param[in] callback  Called on every poll of the wait (not at all when the connector is
    /// ready at once); may be null. See StopAtTimeoutCallback.
    /// @return True when the connector is ready, the process registered and the status answered
    /// without errors. False when the connector could not be started, the wait timed out
    /// (`*timedOut` true), the registration failed or the status answer carries errors.
    /// @par Connector commands
    /// Deregistration of an earlier session, registration, `GETSESSIONINFO`,
    /// `GETCONNECTIONSTATUS`.
    /// @remarks The call sets the offline flag, and it stays set (IsCorvaneInOffLineMode answers
    /// true) until an IsConnected call that does its work clears it: the first IsConnected of the
    /// process, or one with `force`. The wait blocks the calling thread. The root-folder setting
    /// is not written here.
    /// Mock: sets `*timedOut` to false and returns true.
    virtual bool STDMETHODCALLTYPE StartCorvaneAndWaitForReadyState(
        int timeoutMs, bool* timedOut, StopAtTimeoutCallback callback) = 0;

    /// Ends this process's registration with the connector.
    ///
    /// Does nothing when no session is registered. The session id is kept: file services still
    /// send it, and they still count as connected. The manager calls this itself on its last
    /// Release when a session is registered.
    /// @par Connector command
    /// Deregistration.
    /// @remarks When the connector cannot be reached the failure is logged and the session stays
    /// registered. Mock: does nothing.
    virtual void STDMETHODCALLTYPE DeRegisterFromCorvane() = 0;

    /// Whether the connector reported being offline.
    ///
    /// @return The offline flag: set by StartCorvaneAndWaitForReadyState and by an "offline"
    /// error (return code 6) in a connection-status answer, cleared by an IsConnected call that
    /// does its work. Nothing is asked. Mock: always false.
    virtual bool STDMETHODCALLTYPE IsCorvaneInOffLineMode() = 0;

    /// Reads the signed-in session's user and log files.
    ///
    /// @param[out] info  Replaced as a whole on success; left as it is on every other path. May
    /// be null.
    /// @return Always S_OK: when not connected, when the answer carries errors (logged as
    /// "Failed to get session information.") and after an exception as well.
    /// @par Connector command
    /// `GETSESSIONINFO`
    /// @remarks Mock: S_OK, `info` left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetSessionInfo(SessionInfo* info) = 0;

protected:
    /// Not deleted through the interface: Release it.
    ~IVANTOSession() = default;
};

/// The file services: product-data-management work on local files through the connector.
///
/// IID_IVANTOFileServices gives the connector's implementation, IID_IVANTOMockFileServices the
/// mock. Each entry gives the result of the four paths of a call (see the main page): success, an
/// answer with errors, not connected, and an exception. No method lets an exception out except
/// GetStatusInformation, GetCheckOutStatus and GetDocumentConsistencyStamp.
///
/// The mock: CheckIn, CheckOut, both forms of IsValidCorvaneFile, GetStatusInformation and
/// AttachDocumentToRevision answer from the input file `Z:\PDM\VANTO\Dev\VANTOInput.xml` (read
/// once per process; a missing or malformed file leaves it empty) as their entries say; every
/// other method returns S_OK (false for IsNewRevisionAvailable and IsNewVersionAvailable, true
/// for IsFileSynchronized) without touching its arguments.
struct IVANTOFileServices : IUnknown {
    /// Releases the locks of files: checks them in.
    ///
    /// Every entry is sent, whatever its fields hold, even when the list is empty.
    ///
    /// @param[in,out] files  In: `fileName` of each entry. Out, on success: for each file the
    /// answer names (matched exactly, letter case included), `errorCode` and `lockedBy`; other
    /// entries keep their values. May be null.
    /// @return S_OK when the answer carries no errors. E_FAIL when it carries errors (the list is
    /// left as it was; logged as "Error while check-in."), when not connected, and after an
    /// exception.
    /// @par Connector command
    /// `UNLOCKDESIGNREVISIONS`
    /// @remarks An error for any one file (a lock another user holds, for example) fails the
    /// whole call, and no entry is updated. On S_OK, a non-zero `errorCode` is the connector's
    /// return code for that file; LogErrors writes its meaning to the log. Mock: S_OK, the list
    /// left as it came in; 0x80070490 when the input file lists no files, E_OUTOFMEMORY when the
    /// mock's store cannot be made.
    virtual HRESULT STDMETHODCALLTYPE CheckIn(FileCheckInList* files) = 0;

    /// Locks files for the signed-in user: checks them out.
    ///
    /// Files whose `isCheckedOut` is set are left out of the request, including files the user
    /// already holds: call GetCheckOutStatus first to learn who holds what.
    ///
    /// @param[in,out] files  In: the files (keys) and their known lock state. Out: for each file
    /// the answer names, `isCheckedOut` is set, `checkedOutBy` is the holder and
    /// `isCheckedOutByCurrentUser` whether that is the signed-in user; a file the connector
    /// refused (an error other than "object locked") has those two flags cleared again and keeps
    /// `checkedOutBy`. Keys are never added or removed. May be null.
    /// @return S_OK when the answer carries no errors or only "object locked" (return code 13)
    /// errors, and when no file was left to request (no lock is asked for). E_FAIL when the answer
    /// carries any other error (logged as "Error while checkout."; the connector's answer is in
    /// the log line "LockDesignRevisions Output: ..."), when not connected, and after an
    /// exception (updates already made stay).
    /// @par Connector commands
    /// `GETSESSIONINFO`, `LOCKDESIGNREVISIONS`
    /// @remarks S_OK does not mean that every file is now the caller's. A file another user holds
    /// comes back S_OK with `isCheckedOut` set, `isCheckedOutByCurrentUser` clear and
    /// `checkedOutBy` naming the holder: the outcome of each file is in the map, so check each
    /// entry. Locks are taken without expiry.
    /// Mock: S_OK, the map left as it came in; 0x80070490 when the input file lists no files,
    /// E_OUTOFMEMORY when the mock's store cannot be made.
    virtual HRESULT STDMETHODCALLTYPE CheckOut(FileLockStatusMap* files) = 0;

    /// Which paths lie in folders the connector monitors.
    ///
    /// @param[in] paths  The paths to ask about.
    /// @param[out] monitored  For each path the answer names: the path and whether it is
    /// monitored, inserted (a key already there keeps its value). May be null.
    /// @return S_OK on success. E_FAIL when the answer carries errors (no log line), when not
    /// connected, and after an exception.
    /// @par Connector command
    /// `ISPATHMONITORED`
    /// @remarks Mock: each path is answered as the single form does; S_OK.
    virtual HRESULT STDMETHODCALLTYPE IsValidCorvaneFile(const PathList& paths,
                                                         PathMonitoredMap* monitored) = 0;

    /// Whether one path lies in a folder the connector monitors.
    ///
    /// @param[in] path  The path to ask about.
    /// @return True when the connector monitors it. False when it does not, when the answer
    /// carries errors, when not connected, and after an exception.
    /// @par Connector command
    /// `ISPATHMONITORED`
    /// @remarks Mock: true when the path begins with the input file's `RootFolder` (letter case
    /// compared exactly), whether or not the file exists.
    virtual bool STDMETHODCALLTYPE IsValidCorvaneFile(const GUserText& path) = 0;

    /// Reads the status of one file.
    ///
    /// @param[in] path  The file's full path.
    /// @param[in,out] status  Connector: `isNewRevisionAvailable` (always 0 in this release) and
    /// `isNewVersionAvailable` (as IsNewVersionAvailable answers) are set; the other fields are
    /// left as they are. May be null.
    /// @return S_OK when connected; E_FAIL when not connected.
    /// @par Connector commands
    /// What IsNewRevisionAvailable and IsNewVersionAvailable send.
    /// @remarks Not guarded: the two methods it calls catch their own exceptions, and an
    /// exception of its own steps reaches the caller.
    /// Mock: for a file of the input file (found ignoring case), `checkedOutBy` is its holder and
    /// `isCheckedOutByMe` whether that is the input file's user (ignoring case); the other fields
    /// are left. S_OK whether the file is found or not; E_OUTOFMEMORY when the mock's store cannot
    /// be made.
    virtual HRESULT STDMETHODCALLTYPE GetStatusInformation(const GUserText& path,
                                                           FileStatusInformation* status) = 0;

    /// Whether a newer revision of a file exists.
    ///
    /// @param[in] path  Not used.
    /// @return Always false in this release; nothing is sent. When not connected the
    /// invalid-session line is logged all the same. Mock: false.
    virtual bool STDMETHODCALLTYPE IsNewRevisionAvailable(const GUserText& path) = 0;

    /// Whether the cloud holds a newer version of a file than the local one.
    ///
    /// @param[in] path  The file's full path.
    /// @return True when the newer version the connector names for the file's document differs
    /// (ignoring case) from the file's consistency stamp. False when it is the same, when the
    /// connector names none, when not connected, and after an exception. Errors in the answer are
    /// not looked at: they give false.
    /// @par Connector commands
    /// `GETPROPERTIES` (through GetDocumentConsistencyStamp), `CHECKFORNEWERVERSION`
    /// @remarks Mock: false.
    virtual bool STDMETHODCALLTYPE IsNewVersionAvailable(const GUserText& path) = 0;

    /// Reads the lock state of files, and on request whether newer versions exist.
    ///
    /// @param[in,out] files  In: the files (keys). Out, for each file the properties answer names
    /// (looked up ignoring case): from its lock group's "LockedBy", `isCheckedOut`,
    /// `checkedOutBy` and `isCheckedOutByCurrentUser` are set; an empty "LockedBy" clears the two
    /// flags and keeps `checkedOutBy`. With `checkNewVersion`, `isNewVersionAvailable` is set as
    /// IsNewVersionAvailable answers. Files the answer does not name are left as they are; keys
    /// are never added or removed. May be null.
    /// @param[in] checkNewVersion  Also ask, file by file, whether a newer version exists.
    /// @return S_OK on success and when not connected (the map left as it was). When
    /// GetProperties fails, its result (E_FAIL), with the map left as it was.
    /// @par Connector commands
    /// `GETSESSIONINFO`, `GETPROPERTIES`; with `checkNewVersion`, what IsNewVersionAvailable
    /// sends, once per file.
    /// @remarks Not guarded: the methods it calls catch their own exceptions, and an exception of
    /// its own steps reaches the caller. Mock: S_OK, the map left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetCheckOutStatus(FileLockStatusMap* files,
                                                        bool checkNewVersion) = 0;

    /// Downloads the latest version of a file: inert in this release.
    ///
    /// @param[in] path  Not used.
    /// @return Always S_OK. Nothing is sent and the session is not tested. Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE DownloadLatestVersion(const GUserText& path) = 0;

    /// Attaches documents to revisions: inert in this release.
    ///
    /// @param[in] attachments  Taken by value and dropped.
    /// @return Always S_OK. Nothing is sent and the session is not tested. Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE
    AttachDocumentToRevision(RevisionAttachmentList attachments) = 0;

    /// Reads the consistency stamp and document identifier of files.
    ///
    /// @param[in,out] stamps  In: the files (keys). Out, for each file the properties answer names
    /// (ignoring case): `consistencyStamp` and `documentId` from its document-version group, each
    /// set only when the answer holds it. Other entries and keys are left as they are. May be
    /// null.
    /// @return S_OK on success and when not connected (the map left as it was). When
    /// GetProperties fails, its result (E_FAIL), with the map left as it was.
    /// @par Connector command
    /// `GETPROPERTIES` (through GetProperties)
    /// @remarks Not guarded: GetProperties catches its own exceptions, and an exception of this
    /// method's own steps reaches the caller. Mock: S_OK, the map left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetDocumentConsistencyStamp(DocumentStampMap* stamps) = 0;

    /// Whether the connector's data model holds a file.
    ///
    /// @param[in] path  The file's full path.
    /// @return False only when the path is monitored and the connector answers that its model
    /// does not hold the file (return code 8 first; logged as "File is not synchronized."). True
    /// on every other path: synchronized, not monitored, any other error, not connected, and
    /// after an exception.
    /// @par Connector commands
    /// `ISPATHMONITORED`, then `GETPROPERTIES` when the path is monitored.
    /// @remarks The one method that opens no scope record in the log. Mock: true.
    virtual bool STDMETHODCALLTYPE IsFileSynchronized(const GUserText& path) = 0;

    /// Finds the local path of files by their document or component identifier.
    ///
    /// @param[in,out] paths  In: the identifiers (keys). Out: for each identifier the answer
    /// names, its local path (the last one when the answer gives several). Identifiers not
    /// answered keep their values; keys are never added or removed. May be null.
    /// @return S_OK on success and when not connected. S_OK also when the answer carries errors:
    /// the map is left as it was, and the failure shows as values left empty (the codes are
    /// logged through LogErrors). E_FAIL after an exception.
    /// @par Connector command
    /// `GETFILEPATHBYUID`
    /// @remarks Mock: S_OK, the map left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetFilePath(FileUidPathMap* paths) = 0;

    /// Reads the cloud context of files.
    ///
    /// @param[in] paths  The files' full paths.
    /// @param[out] contexts  One entry appended per local path the answer names, with that file's
    /// context; not cleared first. May be null.
    /// @return S_OK on success and when not connected (nothing appended). E_FAIL when the answer
    /// carries errors (codes logged through LogErrors) and after an exception.
    /// @par Connector command
    /// `GETFILECONTEXTINFO`
    /// @remarks Mock: S_OK, the list left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetContextInformation(const PathList& paths,
                                                            FileContextList* contexts) = 0;

    /// Lists the synchronised projects and libraries the signed-in user can reach.
    ///
    /// @param[out] containers  One entry appended per container; not cleared first. May be null.
    /// @param[in,out] status  Set to 3 when the connector does not support the command (return
    /// code 4); left as the caller set it on every other path. May be null.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors
    /// (codes logged through LogErrors) and after an exception.
    /// @par Connector command
    /// `GETAVAILABLECONTAINERS`
    /// @remarks Mock: S_OK, both arguments left as they are.
    virtual HRESULT STDMETHODCALLTYPE GetAvailableContainers(ContainerList* containers,
                                                             std::int32_t* status) = 0;

    /// Asks the connector to synchronise a project to this machine.
    ///
    /// @param[in] projectUrn  The project's URN (ContainerEntry::containerUrn).
    /// @param[in,out] status  Set to 3 when the connector does not support the command (return
    /// code 4); left as the caller set it on every other path. May be null.
    /// @return S_OK when the connector accepted and when not connected. E_FAIL when the answer
    /// carries errors (codes logged through LogErrors; 102 means already synchronised) and after
    /// an exception.
    /// @par Connector command
    /// `ADDPROJECTTOSYNC`
    /// @remarks The synchronisation itself runs in the connector after the call. Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE AddProjectToSync(const GUserText& projectUrn,
                                                       std::int32_t* status) = 0;

    /// Reads the signed-in user's access to files.
    ///
    /// @param[in] paths  The files' full paths.
    /// @param[out] permissions  For each file the answer names: its path and 0 (none), 1 (read) or
    /// 2 (write), inserted (a key already there keeps its value). May be null.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors and
    /// after an exception.
    /// @par Connector command
    /// `GETACCESSPERMISSIONS`
    /// @remarks Mock: S_OK, the map left as it is.
    virtual HRESULT STDMETHODCALLTYPE
    GetFileAccessPermissions(const PathList& paths, AccessPermissionMap* permissions) = 0;

    /// Generates new item numbers, each with its first revision id, for new files of one type in
    /// one folder.
    ///
    /// @param[in] directoryPath  The folder the new files go to.
    /// @param[in] fileExtension  Their extension, for example "par".
    /// @param[in] count  How many numbers to generate; not changed.
    /// @param[out] ids  One (number, revision id) pair appended per generated number; not cleared
    /// first. May be null.
    /// @return S_OK on success and when not connected. E_FAIL, with nothing sent, when
    /// `directoryPath` or `fileExtension` is empty; E_FAIL when the answer carries errors (codes
    /// logged through LogErrors) and after an exception.
    /// @par Connector command
    /// `GETNEXTID`
    /// @remarks Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE GenerateItemIDAndRevision(const GUserText& directoryPath,
                                                                const GUserText& fileExtension,
                                                                std::int32_t& count,
                                                                ItemIdRevisionList* ids) = 0;

    /// Generates the next revision id of a design.
    ///
    /// @param[in] designIdentifier  The design's file path.
    /// @param[out] revisionId  Set to the first revision id the answer holds; left as it is when
    /// it holds none. May be null.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors (the
    /// text left as it is; codes logged through LogErrors) and after an exception.
    /// @par Connector command
    /// `GETNEXTREVISIONID`
    /// @remarks Mock: S_OK, the text left as it is.
    virtual HRESULT STDMETHODCALLTYPE GenerateNextRevisionID(const GUserText& designIdentifier,
                                                             GUserText* revisionId) = 0;

    /// Reads the properties of files: their component, document-version and lock groups.
    ///
    /// @param[in] paths  The files' full paths.
    /// @param[in] filter  The property names to keep (compared exactly); empty keeps all. Files
    /// and groups are returned even when none of their properties is kept.
    /// @param[out] properties  One entry appended per file the answer names; not cleared first.
    /// May be null.
    /// @return S_OK on success. E_FAIL when the answer carries errors (logged as "Error getting
    /// file properties."), and after an exception.
    /// @par Connector command
    /// `GETPROPERTIES`
    /// @remarks The one method that does not test the session first: before a session is
    /// registered it sends the command with an empty session id, and the connector's answer
    /// decides; without a connector proxy it fails as after an exception. Mock: S_OK, the list
    /// left as it is.
    virtual HRESULT STDMETHODCALLTYPE GetProperties(const PathList& paths,
                                                    const PropertyNameSet& filter,
                                                    FilePropertyList* properties) = 0;

    /// Stores a data object in the cloud under a key.
    ///
    /// @param[in] primaryKey  The object's key; it is stored under the secondary key "SaveData".
    /// @param[in] data  The object's text.
    /// @return S_OK whenever the connector answered, errors or not (they are not looked at), and
    /// when not connected. E_FAIL after an exception.
    /// @par Connector command
    /// `SETDATAOBJECT`
    /// @remarks Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE SetDataObject(const GUserText& primaryKey,
                                                    const GUserText& data) = 0;

    /// Finds the design revisions whose name equals a given name.
    ///
    /// @param[in] designName  The name to search for.
    /// @param[out] revisionNames  The name of each revision found appended, in the connector's
    /// order; not cleared first. May be null.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors (the
    /// list left as it was; logged as "ERROR WHILE GENERATING NEXT REVISION." and the codes
    /// through LogErrors) and after an exception.
    /// @par Connector command
    /// `QUERYDESIGNREVISIONS`
    /// @remarks One page is asked for: at most 50 revisions come back. Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE GetDesignRevisions(const GUserText& designName,
                                                         PathList* revisionNames) = 0;

    /// Adds documents as children of an assembly.
    ///
    /// @param[in] parentPath  The assembly's full path.
    /// @param[in] childPaths  The children's full paths; an empty list is sent as it is.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors and
    /// after an exception.
    /// @par Connector command
    /// `ADDCHILDREN`
    /// @remarks Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE AddChildren(const GUserText& parentPath,
                                                  const PathList& childPaths) = 0;

    /// Removes children from an assembly.
    ///
    /// The relations to remove are found through the assembly's children (GetChildren); a child
    /// path that is not among them is sent as an empty relation.
    ///
    /// @param[in] parentPath  The assembly's full path.
    /// @param[in] childPaths  The children's full paths.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors and
    /// after an exception.
    /// @par Connector commands
    /// `GETCHILDREN`, `REMOVECHILDREN`
    /// @remarks Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE RemoveChildren(const GUserText& parentPath,
                                                     const PathList& childPaths) = 0;

    /// Lists the children of an assembly, each with the URN of its relation.
    ///
    /// @param[in] parentPath  The assembly's full path.
    /// @param[out] children  For each child: its path and relation URN, inserted (a key already
    /// there keeps its value). May be null.
    /// @return S_OK on success and when not connected. E_FAIL when the answer carries errors and
    /// after an exception.
    /// @par Connector command
    /// `GETCHILDREN`
    /// @remarks A child's key is its first path ending in .par, .psm, .pwd or .asm (ignoring
    /// case); a child without such a path takes the key of the child before it, so its relation
    /// does not get an entry of its own. Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE GetChildren(const GUserText& parentPath,
                                                  RelationMap* children) = 0;

    /// Finds where files are used: the assemblies that hold them and the drawings of them.
    ///
    /// @param[in] paths  The files' full paths; one command is sent per path, in order.
    /// @param[out] whereUsed  For each document that uses one of the files: its path and the
    /// relation URN, inserted (a key already there keeps its value). May be null.
    /// @param[in] drawingsOnly  Ask for drawings only; otherwise drawings and assemblies.
    /// @return S_OK on success, for an empty list (nothing sent) and when not connected. E_FAIL
    /// when an answer carries errors: the paths after it are not asked, and what the earlier
    /// paths gave stays in the map. E_FAIL after an exception.
    /// @par Connector command
    /// `QUERYPRIMARYOBJECTS`, once per path.
    /// @remarks Mock: S_OK.
    virtual HRESULT STDMETHODCALLTYPE GetCorvaneWUResults(const PathList& paths,
                                                          RelationMap* whereUsed,
                                                          bool drawingsOnly) = 0;

    /// Writes the meaning of a connector return code to the host's developer log.
    ///
    /// Return codes (the connector's "ErrorCode"; also FileCheckInEntry::errorCode): 1 service
    /// failed, 2 functionality unavailable, 3 user not signed in, 4 command not supported, 5
    /// connector not started, 6 offline, 7 invalid input, 8 object not found in the data model, 9
    /// invalid object type, 10 unable to determine the local file path, 11 local file does not
    /// exist, 12 access denied, 13 object locked, 14 design revision not found in the cloud, 16
    /// container not selected for synchronisation, 17 no collaboration space, 18 file type not
    /// supported, 19 a file of the same name exists, 20 an attachment of the same name exists, 21
    /// reference exists, 100 status not valid, 101 preceding status constraint not satisfied, 102
    /// container already synchronised.
    ///
    /// @param[in] returnCode  The code; may be null.
    /// @return Always S_OK. A code without a meaning above (0, 15, 22 to 99, 103 and higher)
    /// writes nothing.
    /// @remarks The line is written at error severity. It opens no scope record and does not test
    /// the session: it may be called at any time. Mock: S_OK, nothing written.
    virtual HRESULT STDMETHODCALLTYPE LogErrors(std::uint32_t* returnCode) = 0;

protected:
    /// Not deleted through the interface: Release it.
    ~IVANTOFileServices() = default;
};

// The two entry points the component exports.
extern "C" {
#ifndef _WIN32
/// Gives the class factory of the manager object.
///
/// Each call makes a new factory. Every failure is also reported to the host's error report with
/// the module's name and a fixed line number.
///
/// @param[in] rclsid  CLSID_VANTOManager.
/// @param[in] riid  IID_IClassFactory or IID_IUnknown.
/// @param[out] ppv  Receives the factory; set to null first.
/// @return S_OK with the factory in `*ppv`. E_INVALIDARG when `ppv` is null; E_NOINTERFACE for
/// any other `riid` (tested before `rclsid`); CLASS_E_CLASSNOTAVAILABLE for any other `rclsid`;
/// E_OUTOFMEMORY.
/// @remarks The factory's CreateInstance gives the manager: ask it for IID_IUnknown, then
/// QueryInterface the manager for the interfaces. With an outer object (aggregation) only
/// IID_IUnknown may be asked for (E_NOINTERFACE otherwise).
HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv);
/// Whether the host may unload the module.
///
/// @return S_FALSE while IClassFactory::LockServer holds the module, and for the rest of the
/// process once a manager object has been released; S_OK otherwise.
/// @remarks Once a manager has existed and gone, the answer stays S_FALSE: a host keeps the
/// module loaded until the process ends. The answer does not count managers that are alive: a
/// host releases every interface before asking.
HRESULT STDAPICALLTYPE DllCanUnloadNow();
#endif
/// The type of DllGetClassObject, for a host that finds it with GetProcAddress or dlsym.
using PFN_DllGetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);
/// The type of DllCanUnloadNow, for a host that finds it with GetProcAddress or dlsym.
using PFN_DllCanUnloadNow = HRESULT(STDAPICALLTYPE*)();
}
