// Versions and revisions: newer versions in the cloud and the design-revision query by name. Three
// entry points of this group stay inert in this release and answer a fixed result.
#include "fileservices/VersionsRevisions.h"

#include "fileservices/CallFrame.h"
#include "fileservices/FirstOfName.h"
#include "fileservices/ReturnCodes.h"

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::CorvaneCheckNewerVersionOnCloudInput;
using Corvane::DataTypes::CorvaneContextInformation;
using Corvane::DataTypes::Search::CorvaneSearchCriteria;
using Corvane::DataTypes::Search::CorvaneSearchDefinition;
using Corvane::DataTypes::Search::CorvaneSearchOptions;
using Corvane::DataTypes::Search::CorvaneSearchTerm;

// Values of the design-revision query.
constexpr const char* NameProperty = "name";
constexpr std::int32_t RevisionPageSize = 50;
constexpr const char* ProjectContainer = "PROJECT";

// Both criteria search by the same definition; each holds an equal copy of its own.
Core::UniquePtr<CorvaneSearchCriteria> NameCriteria(const Core::TevString& name) {
    Core::UniquePtr<CorvaneSearchTerm> term(new CorvaneSearchTerm());
    term->Property = NameProperty;
    term->Value = name;
    term->ComparisionOp = vanto::protocol::Search::CompareEquals;
    Core::UniquePtr<CorvaneSearchDefinition> definition(new CorvaneSearchDefinition());
    definition->Operator = vanto::protocol::Search::AllTerms;
    definition->SearchTerms.push_back(std::move(term));
    Core::UniquePtr<CorvaneSearchCriteria> criteria(new CorvaneSearchCriteria());
    criteria->Definition = std::move(definition);
    return criteria;
}

} // namespace

bool NewerVersionFound(const CorvaneCheckNewerVersionOnCloudOutput& output,
                       const DocumentStampMap& stamps) {
    FirstOfName<NameNoCase, const DocumentStamp*> byDocument(stamps.size());
    for (const auto& [path, stamp] : stamps) {
        byDocument.Add(stamp.documentId.wstr(), &stamp);
    }
    bool newer = false;
    for (const auto& pair : output.IdentifierToNewerVersionId) {
        if (const DocumentStamp* const* stamp = byDocument.Find(FromUtf8(pair->Key).wstr())) {
            newer = !FromUtf8(pair->Value).EqualsNoCase((*stamp)->consistencyStamp);
        }
    }
    return newer;
}

CorvaneQueryDesignRevisionsInput DesignRevisionQuery(const GUserText& designName) {
    const Core::TevString name = ToNarrow(designName);
    CorvaneQueryDesignRevisionsInput input;
    input.RevisionCriteria = NameCriteria(name);
    input.AttachmentCriteria = NameCriteria(name);
    input.Options.reset(new CorvaneSearchOptions());
    input.Options->Skip = 0;
    input.Options->Limit = RevisionPageSize;
    input.Context.reset(new CorvaneContextInformation());
    input.Context->ContainerType = ProjectContainer;
    return input;
}

void AppendRevisionNames(const CorvaneQueryDesignRevisionsOutput& output, PathList& names) {
    for (const auto& context : output.DesignRevisionInfo) {
        for (const auto& revision : context->DesignRevision) {
            names.push_back(FromNarrow(revision->Name));
        }
    }
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

// Always false in this release, whatever the connector holds.
bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsNewRevisionAvailable(const GUserText& /*path*/) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::IsNewRevisionAvailable");
    frame.SessionIsValid();
    return false;
}

bool STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::IsNewVersionAvailable(const GUserText& path) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::IsNewVersionAvailable");
    if (!frame.SessionIsValid()) {
        return false;
    }
    return frame.Guard(false, [&] {
        DocumentStampMap stamps;
        stamps.emplace(path, DocumentStamp());
        frame.Interface().GetDocumentConsistencyStamp(&stamps);
        CorvaneCheckNewerVersionOnCloudInput input;
        input.IdentifierToCheckForNewerVersion.push_back(ToUtf8(path));
        input.IdentifierType = vanto::protocol::IdentifierType::FilePath;
        // The answer's errors are not looked at: without pairs it finds nothing newer.
        const auto output = frame.Execute(input);
        return NewerVersionFound(output, stamps);
    });
}

// Inert in this release.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::DownloadLatestVersion(const GUserText& /*path*/) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::DownloadLatestVersion");
    return S_OK;
}

// Inert in this release; the list it was handed is released on return.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::AttachDocumentToRevision(RevisionAttachmentList /*attachments*/) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::AttachDocumentToRevision");
    return S_OK;
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetDesignRevisions(
    const GUserText& designName, PathList* revisionNames) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetDesignRevisions");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<PathList> names(revisionNames);
    return frame.Guard(E_FAIL, [&] {
        auto input = DesignRevisionQuery(designName);
        const auto output = frame.Execute(input);
        // The numbering text, shared on purpose with GenerateNextRevisionID.
        if (frame.Failed(output, L"ERROR WHILE GENERATING NEXT REVISION.", ErrorCodes::Reported)) {
            return E_FAIL;
        }
        AppendRevisionNames(output, *names);
        return S_OK;
    });
}
