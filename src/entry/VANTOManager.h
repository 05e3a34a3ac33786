// The one creatable object of the component. It owns the connector proxy and hands out the
// session and file-services interfaces, real or mock, all nested in this one object.
#pragma once

#include "VANTO.h"
#include "connector/CorvaneClient.h"

class VANTOManager : public IUnknown {
public:
    // An interface nested in the manager: IUnknown goes to the controlling unknown unchanged.
    template <class Interface> class Nested : public Interface {
    public:
        explicit Nested(VANTOManager& owner) : owner_(owner) {}
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
            return owner_.controllingUnknown->QueryInterface(riid, ppv);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return owner_.controllingUnknown->AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner_.controllingUnknown->Release(); }

        VANTOManager& Manager() const noexcept { return owner_; }

    protected:
        ~Nested() = default;
        VANTOManager& owner_;
    };

    class VANTOFileServices final : public Nested<IVANTOFileServices> {
    public:
        using Nested::Nested;
        HRESULT STDMETHODCALLTYPE CheckIn(FileCheckInList* files) override;
        HRESULT STDMETHODCALLTYPE CheckOut(FileLockStatusMap* files) override;
        HRESULT STDMETHODCALLTYPE IsValidCorvaneFile(const PathList& paths,
                                                     PathMonitoredMap* monitored) override;
        bool STDMETHODCALLTYPE IsValidCorvaneFile(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetStatusInformation(const GUserText& path,
                                                       FileStatusInformation* status) override;
        bool STDMETHODCALLTYPE IsNewRevisionAvailable(const GUserText& path) override;
        bool STDMETHODCALLTYPE IsNewVersionAvailable(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetCheckOutStatus(FileLockStatusMap* files,
                                                    bool checkNewVersion) override;
        HRESULT STDMETHODCALLTYPE DownloadLatestVersion(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE
        AttachDocumentToRevision(RevisionAttachmentList attachments) override;
        HRESULT STDMETHODCALLTYPE GetDocumentConsistencyStamp(DocumentStampMap* stamps) override;
        bool STDMETHODCALLTYPE IsFileSynchronized(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetFilePath(FileUidPathMap* paths) override;
        HRESULT STDMETHODCALLTYPE GetContextInformation(const PathList& paths,
                                                        FileContextList* contexts) override;
        HRESULT STDMETHODCALLTYPE GetAvailableContainers(ContainerList* containers,
                                                         std::int32_t* status) override;
        HRESULT STDMETHODCALLTYPE AddProjectToSync(const GUserText& projectUrn,
                                                   std::int32_t* status) override;
        HRESULT STDMETHODCALLTYPE
        GetFileAccessPermissions(const PathList& paths, AccessPermissionMap* permissions) override;
        HRESULT STDMETHODCALLTYPE GenerateItemIDAndRevision(const GUserText& directoryPath,
                                                            const GUserText& fileExtension,
                                                            std::int32_t& count,
                                                            ItemIdRevisionList* ids) override;
        HRESULT STDMETHODCALLTYPE GenerateNextRevisionID(const GUserText& designIdentifier,
                                                         GUserText* revisionId) override;
        HRESULT STDMETHODCALLTYPE GetProperties(const PathList& paths,
                                                const PropertyNameSet& filter,
                                                FilePropertyList* properties) override;
        HRESULT STDMETHODCALLTYPE SetDataObject(const GUserText& primaryKey,
                                                const GUserText& data) override;
        HRESULT STDMETHODCALLTYPE GetDesignRevisions(const GUserText& designName,
                                                     PathList* revisionNames) override;
        HRESULT STDMETHODCALLTYPE AddChildren(const GUserText& parentPath,
                                              const PathList& childPaths) override;
        HRESULT STDMETHODCALLTYPE RemoveChildren(const GUserText& parentPath,
                                                 const PathList& childPaths) override;
        HRESULT STDMETHODCALLTYPE GetChildren(const GUserText& parentPath,
                                              RelationMap* children) override;
        HRESULT STDMETHODCALLTYPE GetCorvaneWUResults(const PathList& paths, RelationMap* whereUsed,
                                                      bool drawingsOnly) override;
        HRESULT STDMETHODCALLTYPE LogErrors(std::uint32_t* returnCode) override;
    };

    class VANTOMockFileServices final : public Nested<IVANTOFileServices> {
    public:
        using Nested::Nested;
        HRESULT STDMETHODCALLTYPE CheckIn(FileCheckInList* files) override;
        HRESULT STDMETHODCALLTYPE CheckOut(FileLockStatusMap* files) override;
        HRESULT STDMETHODCALLTYPE IsValidCorvaneFile(const PathList& paths,
                                                     PathMonitoredMap* monitored) override;
        bool STDMETHODCALLTYPE IsValidCorvaneFile(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetStatusInformation(const GUserText& path,
                                                       FileStatusInformation* status) override;
        bool STDMETHODCALLTYPE IsNewRevisionAvailable(const GUserText& path) override;
        bool STDMETHODCALLTYPE IsNewVersionAvailable(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetCheckOutStatus(FileLockStatusMap* files,
                                                    bool checkNewVersion) override;
        HRESULT STDMETHODCALLTYPE DownloadLatestVersion(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE
        AttachDocumentToRevision(RevisionAttachmentList attachments) override;
        HRESULT STDMETHODCALLTYPE GetDocumentConsistencyStamp(DocumentStampMap* stamps) override;
        bool STDMETHODCALLTYPE IsFileSynchronized(const GUserText& path) override;
        HRESULT STDMETHODCALLTYPE GetFilePath(FileUidPathMap* paths) override;
        HRESULT STDMETHODCALLTYPE GetContextInformation(const PathList& paths,
                                                        FileContextList* contexts) override;
        HRESULT STDMETHODCALLTYPE GetAvailableContainers(ContainerList* containers,
                                                         std::int32_t* status) override;
        HRESULT STDMETHODCALLTYPE AddProjectToSync(const GUserText& projectUrn,
                                                   std::int32_t* status) override;
        HRESULT STDMETHODCALLTYPE
        GetFileAccessPermissions(const PathList& paths, AccessPermissionMap* permissions) override;
        HRESULT STDMETHODCALLTYPE GenerateItemIDAndRevision(const GUserText& directoryPath,
                                                            const GUserText& fileExtension,
                                                            std::int32_t& count,
                                                            ItemIdRevisionList* ids) override;
        HRESULT STDMETHODCALLTYPE GenerateNextRevisionID(const GUserText& designIdentifier,
                                                         GUserText* revisionId) override;
        HRESULT STDMETHODCALLTYPE GetProperties(const PathList& paths,
                                                const PropertyNameSet& filter,
                                                FilePropertyList* properties) override;
        HRESULT STDMETHODCALLTYPE SetDataObject(const GUserText& primaryKey,
                                                const GUserText& data) override;
        HRESULT STDMETHODCALLTYPE GetDesignRevisions(const GUserText& designName,
                                                     PathList* revisionNames) override;
        HRESULT STDMETHODCALLTYPE AddChildren(const GUserText& parentPath,
                                              const PathList& childPaths) override;
        HRESULT STDMETHODCALLTYPE RemoveChildren(const GUserText& parentPath,
                                                 const PathList& childPaths) override;
        HRESULT STDMETHODCALLTYPE GetChildren(const GUserText& parentPath,
                                              RelationMap* children) override;
        HRESULT STDMETHODCALLTYPE GetCorvaneWUResults(const PathList& paths, RelationMap* whereUsed,
                                                      bool drawingsOnly) override;
        HRESULT STDMETHODCALLTYPE LogErrors(std::uint32_t* returnCode) override;
    };

    class VANTOSession final : public Nested<IVANTOSession> {
    public:
        using Nested::Nested;
        bool STDMETHODCALLTYPE IsConnected(bool force) override;
        HRESULT STDMETHODCALLTYPE GetRootFolders(RootFolderSet* rootFolders) override;
        HRESULT STDMETHODCALLTYPE GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) override;
        bool STDMETHODCALLTYPE IsCorvaneRunning() override;
        bool STDMETHODCALLTYPE IsCorvaneInstalled() override;
        bool STDMETHODCALLTYPE StartCorvaneAndWaitForReadyState(
            int timeoutMs, bool* timedOut, StopAtTimeoutCallback callback) override;
        void STDMETHODCALLTYPE DeRegisterFromCorvane() override;
        bool STDMETHODCALLTYPE IsCorvaneInOffLineMode() override;
        HRESULT STDMETHODCALLTYPE GetSessionInfo(SessionInfo* info) override;
    };

    class VANTOMockSession final : public Nested<IVANTOSession> {
    public:
        using Nested::Nested;
        bool STDMETHODCALLTYPE IsConnected(bool force) override;
        HRESULT STDMETHODCALLTYPE GetRootFolders(RootFolderSet* rootFolders) override;
        HRESULT STDMETHODCALLTYPE GetCurrentLoggedInUserInfo(LoggedInUserInfo* user) override;
        bool STDMETHODCALLTYPE IsCorvaneRunning() override;
        bool STDMETHODCALLTYPE IsCorvaneInstalled() override;
        bool STDMETHODCALLTYPE StartCorvaneAndWaitForReadyState(
            int timeoutMs, bool* timedOut, StopAtTimeoutCallback callback) override;
        void STDMETHODCALLTYPE DeRegisterFromCorvane() override;
        bool STDMETHODCALLTYPE IsCorvaneInOffLineMode() override;
        HRESULT STDMETHODCALLTYPE GetSessionInfo(SessionInfo* info) override;
    };

    // `outer` is the aggregating object's unknown, or null.
    explicit VANTOManager(IUnknown* outer);
    virtual ~VANTOManager();
    VANTOManager(const VANTOManager&) = delete;
    VANTOManager& operator=(const VANTOManager&) = delete;

    // Non-delegating IUnknown.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    Corvane::ICorvaneProxy* Proxy() const noexcept { return proxy; }
    // The proxy, for a call that is about to be made; throws when the manager has none.
    Corvane::ICorvaneProxy& RequireProxy() const;
    VANTOSession& Session() noexcept { return session; }
    VANTOFileServices& FileServices() noexcept { return fileServices; }

private:
    Corvane::ICorvaneProxy* proxy = nullptr;
    IUnknown* controllingUnknown;
    VANTOFileServices fileServices;
    VANTOMockFileServices mockFileServices;
    VANTOSession session;
    VANTOMockSession mockSession;
    ULONG refCount = 0;
};
