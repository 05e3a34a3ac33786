// File identity and context: whether the connector monitors a path and knows the file, its status,
// its path by identifier, its cloud context and its consistency stamp. Each method's result on
// each path is its own, on purpose.
#include "fileservices/IdentityContext.h"

#include "fileservices/CallFrame.h"
#include "fileservices/ReturnCodes.h"
#include "host/GUserFileName.h"

#include <algorithm>

namespace vanto::fileservices {

namespace {

using Corvane::CommandIO::DataManagement::CorvaneGetFileContextInformationInput;
using Corvane::CommandIO::DataManagement::CorvaneGetFilePathByUidInput;
using Corvane::CommandIO::DataManagement::CorvaneGetPropertiesInput;
using Corvane::CommandIO::DataManagement::CorvaneIsPathMonitoredInput;
using Corvane::DataTypes::CorvaneFileUidAndContextInformationPair;
using Corvane::DataTypes::CorvaneStringToObjectTypesPair;

// The document-version properties of one path: enough to learn whether the model knows it.
CorvaneGetPropertiesInput DocumentPropertiesRequest(const GUserText& path) {
    Core::UniquePtr<CorvaneStringToObjectTypesPair> pair(new CorvaneStringToObjectTypesPair());
    pair->Key = ToUtf8(path);
    pair->ObjectTypeList.push_back(vanto::protocol::ObjectType::Document);
    CorvaneGetPropertiesInput input;
    input.FilePathToObjectTypesArray.push_back(std::move(pair));
    return input;
}

} // namespace

void AddMonitored(const CorvaneIsPathMonitoredOutput& output, PathMonitoredMap& monitored) {
    for (const auto& entry : output.PathToIsMonitored) {
        monitored.emplace(FromUtf8(entry->Key), entry->Value);
    }
}

bool FirstMonitored(const CorvaneIsPathMonitoredOutput& output) {
    return !output.PathToIsMonitored.empty() && output.PathToIsMonitored.front()->Value;
}

void StoreFilePaths(const CorvaneGetFilePathByUidOutput& output, FileUidPathMap& paths) {
    for (const auto& pair : output.DocumentIdToFilePathMap) {
        const auto found = paths.find(FromNarrow(pair->Key));
        if (found != paths.end() && !pair->Values.empty()) {
            found->second = FromUtf8(pair->Values.back());
        }
    }
}

void AppendContexts(const CorvaneGetFileContextInformationOutput& output,
                    FileContextList& contexts) {
    std::size_t added = 0;
    for (const auto& entry : output.FileContextInformation) {
        for (const auto& file : entry->FileInformation) {
            added += file->FilePaths.size();
        }
    }
    // Grown at most once, and still geometrically for a caller that appends call after call.
    if (contexts.capacity() - contexts.size() < added) {
        contexts.reserve(std::max(contexts.size() + added, 2 * contexts.capacity()));
    }
    for (const auto& entry : output.FileContextInformation) {
        FileContext context;
        if (const auto& cloud = entry->ContextInformation) {
            context.collaborationSpaceId = FromNarrow(cloud->CollaborationSpaceId);
            context.containerId = FromNarrow(cloud->ContainerId);
        }
        const auto& files = entry->FileInformation;
        for (std::size_t f = 0; f < files.size(); ++f) {
            const auto& file = *files[f];
            context.componentId = FromNarrow(file.ComponentId);
            context.componentRevisionId = FromNarrow(file.ComponentRevisionId);
            context.documentId = FromNarrow(file.DocumentId);
            context.componentUrn = FromNarrow(file.ComponentUrn);
            context.componentRevisionUrn = FromNarrow(file.ComponentRevisionUrn);
            context.documentUrn = FromNarrow(file.DocumentUrn);
            const auto& paths = file.FilePaths;
            for (std::size_t p = 0; p < paths.size(); ++p) {
                GUserText path = GUserFileName(paths[p].c_str()).Text();
                // The entry's last path takes the context itself, which nothing reads after it;
                // a file usually has one path, so its eight texts are made once, not twice.
                if (f + 1 == files.size() && p + 1 == paths.size()) {
                    contexts.push_back({std::move(path), std::move(context)});
                } else {
                    contexts.push_back({std::move(path), context});
                }
            }
        }
    }
}

void ApplyDocumentStamp(const FilePropertyEntry& file, DocumentStamp& stamp) {
    static const GUserText ConsistencyStamp(L"consistencyStamp");
    static const GUserText DocumentId(L"DocumentId");
    for (const ObjectTypeProperties& group : file.objectTypes) {
        if (group.objectType != vanto::protocol::ObjectType::Document) {
            continue;
        }
        for (const PropertyEntry& property : group.properties) {
            if (property.values.empty()) {
                continue;
            }
            if (property.name.EqualsNoCase(ConsistencyStamp)) {
                stamp.consistencyStamp = property.values.front();
            } else if (property.name.EqualsNoCase(DocumentId)) {
                stamp.documentId = property.values.front();
            }
        }
    }
}

} // namespace vanto::fileservices

using namespace vanto::fileservices;

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::IsValidCorvaneFile(
    const PathList& paths, PathMonitoredMap* monitored) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::IsValidCorvaneFile");
    if (!frame.SessionIsValid()) {
        return E_FAIL;
    }
    const Target<PathMonitoredMap> map(monitored);
    return frame.Guard(E_FAIL, [&] {
        CorvaneIsPathMonitoredInput input;
        AppendUtf8(input.Paths, paths);
        const auto output = frame.Execute(input);
        // The caller learns of the failure from the result alone.
        if (frame.Failed(output, nullptr, ErrorCodes::NotReported)) {
            return E_FAIL;
        }
        AddMonitored(output, *map);
        return S_OK;
    });
}

bool STDMETHODCALLTYPE VANTOManager::VANTOFileServices::IsValidCorvaneFile(const GUserText& path) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::IsValidCorvaneFile");
    if (!frame.SessionIsValid()) {
        return false;
    }
    return frame.Guard(false, [&] {
        CorvaneIsPathMonitoredInput input;
        input.Paths.push_back(ToUtf8(path));
        const auto output = frame.Execute(input);
        return output.Errors.empty() && FirstMonitored(output);
    });
}

// No command and no guard of its own: the two methods it asks guard themselves.
HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetStatusInformation(
    const GUserText& path, FileStatusInformation* status) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetStatusInformation");
    if (!frame.SessionIsValid()) {
        return E_FAIL;
    }
    const Target<FileStatusInformation> information(status);
    IVANTOFileServices& table = frame.Interface();
    information->isNewRevisionAvailable = table.IsNewRevisionAvailable(path) ? 1 : 0;
    information->isNewVersionAvailable = table.IsNewVersionAvailable(path) ? 1 : 0;
    return S_OK;
}

// Opens no scope record. A file counts as synchronized unless the connector says that its model
// does not hold it.
bool STDMETHODCALLTYPE VANTOManager::VANTOFileServices::IsFileSynchronized(const GUserText& path) {
    const CallFrame frame(*this, nullptr);
    if (!frame.SessionIsValid()) {
        return true;
    }
    return frame.Guard(true, [&] {
        CorvaneIsPathMonitoredInput monitoredInput;
        monitoredInput.Paths.push_back(ToUtf8(path));
        const auto monitored = frame.Execute(monitoredInput);
        if (!monitored.Errors.empty() || !FirstMonitored(monitored)) {
            return true;
        }
        auto propertiesInput = DocumentPropertiesRequest(path);
        const auto properties = frame.Execute(propertiesInput);
        if (!frame.Failed(properties, L"Error getting file properties.", ErrorCodes::NotReported)) {
            return true;
        }
        if (properties.Errors.front()->ErrorCode !=
            vanto::protocol::ReturnCode::ObjectNotFoundInModel) {
            return true;
        }
        frame.Warning(L"File is not synchronized.");
        return false;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetFilePath(FileUidPathMap* paths) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetFilePath");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<FileUidPathMap> map(paths);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetFilePathByUidInput input;
        for (const auto& entry : *map) {
            Core::UniquePtr<CorvaneFileUidAndContextInformationPair> pair(
                new CorvaneFileUidAndContextInformationPair());
            pair->FileUid = ToUtf8(entry.first);
            input.ListOfFileUidAndContextInformation.push_back(std::move(pair));
        }
        const auto output = frame.Execute(input);
        // Success all the same: the caller learns of the failure from the paths left empty.
        if (frame.Failed(output, L"ERROR WHILE GETTING FILE PATH.", ErrorCodes::Reported)) {
            return S_OK;
        }
        StoreFilePaths(output, *map);
        return S_OK;
    });
}

HRESULT STDMETHODCALLTYPE VANTOManager::VANTOFileServices::GetContextInformation(
    const PathList& paths, FileContextList* contexts) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetContextInformation");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<FileContextList> list(contexts);
    return frame.Guard(E_FAIL, [&] {
        CorvaneGetFileContextInformationInput input;
        AppendUtf8(input.Files, paths);
        const auto output = frame.Execute(input);
        if (frame.Failed(output, L"ERROR WHILE GETTING CORVANE CONTEXT INFORMATION.",
                         ErrorCodes::Reported)) {
            return E_FAIL;
        }
        AppendContexts(output, *list);
        return S_OK;
    });
}

// No guard of its own: the properties call guards itself.
HRESULT STDMETHODCALLTYPE
VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp(DocumentStampMap* stamps) {
    const CallFrame frame(*this, L"VANTOManager::VANTOFileServices::GetDocumentConsistencyStamp");
    if (!frame.SessionIsValid()) {
        return S_OK;
    }
    const Target<DocumentStampMap> map(stamps);
    FilePropertyList properties;
    const HRESULT result =
        frame.Interface().GetProperties(KeysOf(*map), PropertyNameSet(), &properties);
    if (result != S_OK) {
        return result;
    }
    for (const FilePropertyEntry& file : properties) {
        const auto found = map->find(file.filePath);
        if (found != map->end()) {
            ApplyDocumentStamp(file, found->second);
        }
    }
    return S_OK;
}
