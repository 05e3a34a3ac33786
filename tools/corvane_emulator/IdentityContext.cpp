// File identity and context: monitored paths, paths by identifier and the context of files.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

VANTO_EMULATOR_COMMAND(GetFileContextInfo, command::CorvaneGetFileContextInformationInput) {
    for (const auto& file : in.Files) {
        const auto d = store.FindDocument(file.str(), IdentifierType::FilePath);
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, file.str());
            continue;
        }
        CorvaneFileContextInformation& info = Append(out.FileContextInformation);
        FillFileInfo(Append(info.FileInformation), *d);
        FillContext(Set(info.ContextInformation), store, *d);
    }
}

VANTO_EMULATOR_COMMAND(GetFilePathByUid, command::CorvaneGetFilePathByUidInput) {
    for (const auto& pair : in.ListOfFileUidAndContextInformation) {
        const std::string uid = pair->FileUid.str();
        auto d = store.FindDocument(uid, IdentifierType::DocumentId);
        if (!d) {
            d = store.FindDocument(uid, IdentifierType::AnyId);
        }
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, uid);
            continue;
        }
        CorvaneStringToStringListPair& entry = Append(out.DocumentIdToFilePathMap);
        entry.Key = pair->FileUid;
        entry.Values.push_back(T(d->path));
    }
}

VANTO_EMULATOR_COMMAND(IsPathMonitored, command::CorvaneIsPathMonitoredInput) {
    const auto roots = store.RootFolders();
    for (const auto& path : in.Paths) {
        CorvaneStringToBoolPair& entry = Append(out.PathToIsMonitored);
        entry.Key = path;
        entry.Value =
            !path.empty() && std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
                return IsUnder(path.str(), root);
            });
    }
}

} // namespace vanto::emulator
