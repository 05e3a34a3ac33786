// Subcommands of the file-services interface, one per method; the structure ones are in
// StructureCommands.cpp.
#include "Host.h"

#include "connector/CorvaneClient.h"
#include "protocol/commands/DataManagementCommands.h"
#include "protocol/commands/MCADCommands.h"

#include <limits>
#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace vanto::host {

namespace {

using Corvane::CommandIO::DataManagement::CorvaneAddProjectToSyncInput;
using Corvane::CommandIO::DataManagement::CorvaneGetAvailableContainersInput;
using Corvane::CommandIO::DataManagement::CorvaneGetAvailableContainersOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsInput;

// What the subcommands of this file take from the command line. One per program run, so the
// parsed values can live here while the chosen runner uses them.
struct Arguments {
    std::vector<std::string> paths;
    std::string text;
    std::string second;
    std::vector<std::string> names;
    bool flag = false;
    std::int32_t count = 1;
    std::uint32_t code = 0;
    std::int32_t status = protocol::CallerStatus::Unchanged;
};

Report::Layout Blocks = Report::Layout::Blocks;

// The connector's return code for each path an error names.
std::unordered_map<std::string, std::int32_t> RefusedPaths(const Exchanges& sent) {
    std::unordered_map<std::string, std::int32_t> refused;
    for (const ConnectorError& error : sent.Errors()) {
        for (const std::string& id : error.ids) {
            refused.emplace(id, error.code);
        }
    }
    return refused;
}

// What a check-out came to for one file, in words: a file held by someone else, or one the
// connector gave an error for, is refused.
std::string Outcome(const std::string& path, const FileLockStatus& lock,
                    const std::unordered_map<std::string, std::int32_t>& refused) {
    if (lock.isCheckedOut) {
        return lock.isCheckedOutByCurrentUser ? "checked out"
                                              : "refused: held by " + lock.checkedOutBy.Narrow();
    }
    const auto code = refused.find(path);
    return code != refused.end() ? "refused: " + ReturnCodeText(code->second) : "not checked out";
}

// After a lock or unlock that got no answer, the connector may or may not have done it.
constexpr const char* UnknownOutcome =
    "the connector did not answer: whether it changed the locks is unknown; "
    "'vanto_host lock-status PATH...' tells";

// The lock of each file, as the component filled it; `more` adds to the columns and each row.
template <class More>
Report LockReport(const char* operation, HRESULT hr, const FileLockStatusMap& files,
                  std::vector<Column> moreColumns, More more) {
    Report report(operation);
    std::vector<Column> columns{{"path", "path"},
                                {"checkedOut", "checked out"},
                                {"checkedOutByMe", "by me"},
                                {"checkedOutBy", "holder"}};
    columns.insert(columns.end(), moreColumns.begin(), moreColumns.end());
    report.Result(hr).Columns(std::move(columns));
    for (const auto& [path, lock] : files) {
        boost::json::object row{{"path", Json(path)},
                                {"checkedOut", lock.isCheckedOut},
                                {"checkedOutByMe", lock.isCheckedOutByCurrentUser},
                                {"checkedOutBy", Json(lock.checkedOutBy)}};
        more(path.Narrow(), lock, row);
        report.Row(std::move(row));
    }
    return report;
}

Report CheckOutReport(HRESULT hr, const FileLockStatusMap& files, const Exchanges& sent) {
    const auto refused = RefusedPaths(sent);
    std::size_t done = 0;
    Report report = LockReport(
        "CheckOut", hr, files, {{"outcome", "outcome"}},
        [&](const std::string& path, const FileLockStatus& lock, boost::json::object& row) {
            done += lock.isCheckedOutByCurrentUser ? 1 : 0;
            row["outcome"] = Outcome(path, lock, refused);
        });
    if (sent.AnswerMissing()) {
        report.Note(UnknownOutcome);
    }
    return report.Done(done, files.size());
}

Report CheckInReport(HRESULT hr, const FileCheckInList& files, const Exchanges& sent) {
    Report report("CheckIn");
    report.Result(hr).Columns(
        {{"path", "path"}, {"errorCodeName", "return code"}, {"lockedBy", "locked by"}});
    const auto refused = RefusedPaths(sent);
    std::size_t done = 0;
    for (const FileCheckInEntry& file : files) {
        const std::string name = file.fileName.Narrow();
        done += refused.count(name) == 0 ? 1 : 0;
        boost::json::object row{{"path", Json(name)}, {"lockedBy", Json(file.lockedBy)}};
        PutNamed(row, "errorCode", static_cast<std::int32_t>(file.errorCode),
                 protocol::ReturnCodeNames);
        report.Row(std::move(row));
    }
    if (hr != S_OK) {
        // The component fills the rows from a clean answer only.
        report.Unfilled();
    }
    if (sent.AnswerMissing()) {
        report.Note(UnknownOutcome);
    }
    return report.Done(done, files.size());
}

FileLockStatusMap LockMap(const std::vector<std::string>& paths) {
    FileLockStatusMap files;
    for (const std::string& path : paths) {
        files[Wide(path)];
    }
    return files;
}

// A return code's name; its number for one without a name.
std::string ReturnCodeName(std::uint32_t code) {
    const char* name =
        code <= std::numeric_limits<std::int32_t>::max()
            ? protocol::NameOf(protocol::ReturnCodeNames, static_cast<std::int32_t>(code))
            : nullptr;
    return name != nullptr ? name : std::to_string(code);
}

// The first value of a named property in a record's "Properties".
boost::json::value PropertyValue(const boost::json::object& record, std::string_view name) {
    for (const boost::json::value& property : ArrayOf(record, "Properties")) {
        const boost::json::object* entry = property.if_object();
        if (entry != nullptr && TextOf(*entry, "Name") == name) {
            const boost::json::array& values = ArrayOf(*entry, "PropertyValues");
            return values.empty() ? boost::json::value(nullptr) : values.front();
        }
    }
    return nullptr;
}

// Each design revision of a query's answer, in its order: revision, number and file.
std::vector<boost::json::object> RevisionDetails(const boost::json::object* answer) {
    std::vector<boost::json::object> details;
    if (answer == nullptr) {
        return details;
    }
    for (const boost::json::value& group : ArrayOf(*answer, "DesignRevisionInfo")) {
        for (const boost::json::value& revision : ArrayOf(group, "DesignRevision")) {
            const boost::json::object* record = revision.if_object();
            if (record == nullptr) {
                continue;
            }
            const boost::json::array& datasets = ArrayOf(*record, "Datasets");
            const boost::json::object* dataset =
                datasets.empty() ? nullptr : datasets.front().if_object();
            details.push_back(
                {{"revision", PropertyValue(*record, "revid")},
                 {"number", PropertyValue(*record, "number")},
                 {"file", dataset != nullptr ? boost::json::value(TextOf(*dataset, "FileName"))
                                             : boost::json::value(nullptr)}});
        }
    }
    return details;
}

// Every container of the signed-in user, synchronised or not: the component asks for the
// synchronised ones only, so the tool asks the connector itself, in the session the component
// opened. Empty when there is no session or no answer (the trace tells why).
CorvaneGetAvailableContainersOutput UnsynchronisedContainers(Host& host) {
    const std::string session = host.Sent().SessionId();
    if (session.empty()) {
        return CorvaneGetAvailableContainersOutput();
    }
    CorvaneGetAvailableContainersInput input;
    input.SessionId = session;
    input.ContainerType.push_back(protocol::ContainerType::Project);
    input.ContainerType.push_back(protocol::ContainerType::Library);
    input.ReturnUnsynched = true;
    try {
        Corvane::CorvaneProxyFactory factory;
        Corvane::ICorvaneProxy* proxy = factory.CreateCorvaneProxy();
        return CorvaneGetAvailableContainersOutput(proxy != nullptr ? proxy->Execute(input.ToJson())
                                                                    : Core::TevString());
    } catch (const Corvane::CorvaneCommunicationException&) {
        return CorvaneGetAvailableContainersOutput();
    }
}

void AddLockCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    AddPaths(*AddCommand(app, "checkout", "lock files for the signed-in user (CheckOut)",
                         Needs::Session, chosen,
                         [a](Host& host) {
                             FileLockStatusMap files = LockMap(a->paths);
                             const HRESULT hr = host.Files().CheckOut(&files);
                             return host.Print(CheckOutReport(hr, files, host.Sent()));
                         }),
             a->paths);

    AddPaths(*AddCommand(app, "checkin", "unlock files (CheckIn)", Needs::Session, chosen,
                         [a](Host& host) {
                             FileCheckInList files;
                             for (const std::string& path : a->paths) {
                                 files.push_back(FileCheckInEntry{Wide(path), 0, GUserText()});
                             }
                             const HRESULT hr = host.Files().CheckIn(&files);
                             return host.Print(CheckInReport(hr, files, host.Sent()));
                         }),
             a->paths);

    CLI::App* lockStatus = AddCommand(
        app, "lock-status", "who holds each file's lock (GetCheckOutStatus)", Needs::Session,
        chosen, [a](Host& host) {
            FileLockStatusMap files = LockMap(a->paths);
            const HRESULT hr = host.Files().GetCheckOutStatus(&files, a->flag);
            std::vector<Column> more;
            if (a->flag) {
                more.push_back({"newVersionAvailable", "newer version"});
            }
            Report report = LockReport(
                "GetCheckOutStatus", hr, files, more,
                [&](const std::string&, const FileLockStatus& lock, boost::json::object& row) {
                    if (a->flag) {
                        row["newVersionAvailable"] = lock.isNewVersionAvailable;
                    }
                });
            return host.Print(hr == S_OK ? report : report.Unfilled());
        });
    AddPaths(*lockStatus, a->paths);
    lockStatus->add_flag("--new-version", a->flag, "also ask whether a newer version exists");

    AddCommand(app, "status",
               "a file's status: newer version or revision available (GetStatusInformation)",
               Needs::Session, chosen,
               [a](Host& host) {
                   FileStatusInformation status;
                   const HRESULT hr = host.Files().GetStatusInformation(Wide(a->text), &status);
                   return host.Print(Report("GetStatusInformation")
                                         .Result(hr)
                                         .Field("path", "path", Json(a->text))
                                         .Field("checkedOut", "checked out", status.isCheckedOut)
                                         .Field("checkedOutByMe", "by me", status.isCheckedOutByMe)
                                         .Field("checkedOutBy", "holder", Json(status.checkedOutBy))
                                         .Field("newVersionAvailable", "newer version",
                                                status.isNewVersionAvailable != 0)
                                         .Field("newRevisionAvailable", "newer revision",
                                                status.isNewRevisionAvailable != 0));
               })
        ->add_option("PATH", a->text, "file path")
        ->required()
        ->check(PathCheck());
}

// A subcommand that asks one yes-or-no question about one path.
void AddPathQuestion(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a,
                     const char* name, const char* help, const char* operation,
                     bool (*ask)(IVANTOFileServices&, const GUserText&)) {
    AddCommand(app, name, help, Needs::Session, chosen,
               [a, operation, ask](Host& host) {
                   return host.Print(Report(operation)
                                         .Answer(ask(host.Files(), Wide(a->text)))
                                         .Field("path", "path", Json(a->text)));
               })
        ->add_option("PATH", a->text, "file path")
        ->required()
        ->check(PathCheck());
}

void AddIdentityCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    AddPaths(*AddCommand(
                 app, "monitored",
                 "whether paths lie in folders the connector monitors "
                 "(IsValidCorvaneFile, list)",
                 Needs::Session, chosen,
                 [a](Host& host) {
                     PathMonitoredMap monitored;
                     Report report("IsValidCorvaneFile");
                     report.Result(host.Files().IsValidCorvaneFile(WideList(a->paths), &monitored))
                         .Columns({{"path", "path"}, {"monitored", "monitored"}});
                     for (const auto& [path, yes] : monitored) {
                         report.Row({{"path", Json(path)}, {"monitored", yes}});
                     }
                     return host.Print(report);
                 }),
             a->paths);

    AddPathQuestion(app, chosen, a, "valid",
                    "whether one path lies in a monitored folder (IsValidCorvaneFile, single)",
                    "IsValidCorvaneFile", [](IVANTOFileServices& files, const GUserText& path) {
                        return files.IsValidCorvaneFile(path);
                    });
    AddPathQuestion(app, chosen, a, "synchronized",
                    "whether the connector knows the file (IsFileSynchronized)",
                    "IsFileSynchronized", [](IVANTOFileServices& files, const GUserText& path) {
                        return files.IsFileSynchronized(path);
                    });
    AddPathQuestion(app, chosen, a, "newer",
                    "whether the cloud holds a newer version (IsNewVersionAvailable)",
                    "IsNewVersionAvailable", [](IVANTOFileServices& files, const GUserText& path) {
                        return files.IsNewVersionAvailable(path);
                    });
    AddPathQuestion(app, chosen, a, "new-revision",
                    "whether a newer revision exists (IsNewRevisionAvailable)",
                    "IsNewRevisionAvailable", [](IVANTOFileServices& files, const GUserText& path) {
                        return files.IsNewRevisionAvailable(path);
                    });

    AddPaths(*AddCommand(app, "stamp",
                         "consistency stamp and document id of files "
                         "(GetDocumentConsistencyStamp)",
                         Needs::Session, chosen,
                         [a](Host& host) {
                             DocumentStampMap stamps;
                             for (const std::string& path : a->paths) {
                                 stamps[Wide(path)];
                             }
                             Report report("GetDocumentConsistencyStamp");
                             report.Result(host.Files().GetDocumentConsistencyStamp(&stamps))
                                 .Columns({{"path", "path"},
                                           {"consistencyStamp", "stamp"},
                                           {"documentId", "document id"}});
                             for (const auto& [path, stamp] : stamps) {
                                 report.Row({{"path", Json(path)},
                                             {"consistencyStamp", Json(stamp.consistencyStamp)},
                                             {"documentId", Json(stamp.documentId)}});
                             }
                             return host.Print(report);
                         }),
             a->paths);

    AddCommand(app, "path-of", "the local path of files by their identifier (GetFilePath)",
               Needs::Session, chosen,
               [a](Host& host) {
                   FileUidPathMap paths;
                   for (const std::string& id : a->names) {
                       paths[Wide(id)];
                   }
                   Report report("GetFilePath");
                   report.Result(host.Files().GetFilePath(&paths))
                       .Columns({{"id", "identifier"}, {"path", "path"}});
                   for (const auto& [id, path] : paths) {
                       report.Row({{"id", Json(id)}, {"path", Json(path)}});
                   }
                   return host.Print(report);
               })
        ->add_option("ID", a->names, "file identifier")
        ->required()
        ->check(TextCheck());

    AddPaths(*AddCommand(app, "context",
                         "the cloud context of files: component, document, container "
                         "(GetContextInformation)",
                         Needs::Session, chosen,
                         [a](Host& host) {
                             FileContextList contexts;
                             Report report("GetContextInformation");
                             report
                                 .Result(host.Files().GetContextInformation(WideList(a->paths),
                                                                            &contexts))
                                 .Columns({{"path", "path"},
                                           {"componentId", "component id"},
                                           {"documentId", "document id"},
                                           {"collaborationSpaceId", "collaboration space"},
                                           {"containerId", "container id"},
                                           {"componentRevisionId", "component revision"},
                                           {"componentRevisionUrn", "component revision URN"},
                                           {"documentUrn", "document URN"},
                                           {"componentUrn", "component URN"}},
                                          Blocks);
                             for (const FileContextEntry& entry : contexts) {
                                 const FileContext& c = entry.context;
                                 report.Row({{"path", Json(entry.path)},
                                             {"componentId", Json(c.componentId)},
                                             {"documentId", Json(c.documentId)},
                                             {"collaborationSpaceId", Json(c.collaborationSpaceId)},
                                             {"containerId", Json(c.containerId)},
                                             {"componentRevisionId", Json(c.componentRevisionId)},
                                             {"componentRevisionUrn", Json(c.componentRevisionUrn)},
                                             {"documentUrn", Json(c.documentUrn)},
                                             {"componentUrn", Json(c.componentUrn)}});
                             }
                             return host.Print(report);
                         }),
             a->paths);
}

void AddVersionCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    AddCommand(app, "download", "fetch the latest version of a file (DownloadLatestVersion)",
               Needs::Session, chosen,
               [a](Host& host) {
                   return host.Print(Report("DownloadLatestVersion")
                                         .Result(host.Files().DownloadLatestVersion(Wide(a->text)))
                                         .Field("path", "path", Json(a->text)));
               })
        ->add_option("PATH", a->text, "file path")
        ->required()
        ->check(PathCheck());

    CLI::App* attach = AddCommand(
        app, "attach", "attach documents to a revision (AttachDocumentToRevision)", Needs::Session,
        chosen, [a](Host& host) {
            RevisionAttachmentList attachments;
            for (const std::string& path : a->paths) {
                attachments.push_back(RevisionAttachment{Wide(path), Wide(a->text)});
            }
            return host.Print(
                Report("AttachDocumentToRevision")
                    .Result(host.Files().AttachDocumentToRevision(std::move(attachments)))
                    .Field("revision", "revision", Json(a->text)));
        });
    AddPaths(*attach, a->paths, "PATH", "document path");
    attach->add_option("--revision", a->text, "the revision's identifier")
        ->required()
        ->check(TextCheck());

    AddCommand(app, "revisions", "design revisions found by name (GetDesignRevisions)",
               Needs::Session, chosen,
               [a](Host& host) {
                   PathList names;
                   Report report("GetDesignRevisions");
                   report.Result(host.Files().GetDesignRevisions(Wide(a->text), &names))
                       .Given("name", "name", Json(a->text))
                       .Columns({{"name", "design revision"},
                                 {"revision", "revision"},
                                 {"number", "number"},
                                 {"file", "file"}});
                   // The names are the component's; the rest is what the connector answered
                   // with them, in the same order.
                   const std::vector<boost::json::object> details = RevisionDetails(
                       host.Sent().AnswerTo(CorvaneQueryDesignRevisionsInput::CommandName));
                   for (std::size_t i = 0; i < names.size(); ++i) {
                       boost::json::object row =
                           i < details.size() && details.size() == names.size()
                               ? details[i]
                               : boost::json::object();
                       row["name"] = Json(names[i]);
                       report.Row(std::move(row));
                   }
                   return host.Print(report);
               })
        ->add_option("NAME", a->text, "design name")
        ->required()
        ->check(TextCheck());
}

void AddContainerCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    CLI::App* listContainers = AddCommand(
        app, "containers", "projects available to the signed-in user (GetAvailableContainers)",
        Needs::Session, chosen, [a](Host& host) {
            ContainerList containers;
            std::int32_t status = a->status;
            Report report("GetAvailableContainers");
            report.Result(host.Files().GetAvailableContainers(&containers, &status))
                .Named("status", "status", status, NumberText(protocol::CallerStatusNames, status))
                .Columns({{"containerName", "name"},
                          {"synchronised", "synchronised"},
                          {"localFilePath", "local folder"},
                          {"containerId", "id"},
                          {"containerUrn", "URN"},
                          {"collaborationSpaceId", "collaboration space"}});
            std::unordered_set<std::string> listed;
            for (const ContainerEntry& c : containers) {
                listed.insert(c.containerId.Narrow());
                report.Row({{"containerName", Json(c.containerName)},
                            {"synchronised", true},
                            {"localFilePath", Json(c.localFilePath)},
                            {"containerId", Json(c.containerId)},
                            {"containerUrn", Json(c.containerUrn)},
                            {"collaborationSpaceId", Json(c.collaborationSpaceId)}});
            }
            if (a->flag) {
                for (const auto& c : UnsynchronisedContainers(host).ContainerInformation) {
                    if (listed.count(c->ContainerId.str()) == 0) {
                        report.Row({{"containerName", Json(c->ContainerName.str())},
                                    {"synchronised", false},
                                    {"localFilePath", Json(c->LocalFilePath.str())},
                                    {"containerId", Json(c->ContainerId.str())},
                                    {"containerUrn", Json(c->ContainerUrn.str())},
                                    {"collaborationSpaceId",
                                     Json(c->CollaborationSpace
                                              ? c->CollaborationSpace->CollaborationSpaceId.str()
                                              : std::string())}});
                    }
                }
            }
            return host.Print(report);
        });
    listContainers->add_flag(
        "--all", a->flag,
        "also the projects not synchronised yet, with the URN sync-project takes");

    AddCommand(app, "sync-project", "have the connector synchronise a project (AddProjectToSync)",
               Needs::Session, chosen,
               [a](Host& host) {
                   std::int32_t status = a->status;
                   const HRESULT hr = host.Files().AddProjectToSync(Wide(a->text), &status);
                   // The component keeps the task the connector started to itself.
                   const boost::json::object* answer =
                       host.Sent().AnswerTo(CorvaneAddProjectToSyncInput::CommandName);
                   return host.Print(Report("AddProjectToSync")
                                         .Result(hr)
                                         .Given("project", "project", Json(a->text))
                                         .Named("status", "status", status,
                                                NumberText(protocol::CallerStatusNames, status))
                                         .Field("taskId", "task",
                                                answer != nullptr ? Json(TextOf(*answer, "TaskId"))
                                                                  : boost::json::value(nullptr)));
               })
        ->add_option("URN", a->text, "the project's URN")
        ->required()
        ->check(TextCheck());

    AddPaths(*AddCommand(app, "permissions",
                         "access permission of files "
                         "(GetFileAccessPermissions)",
                         Needs::Session, chosen,
                         [a](Host& host) {
                             AccessPermissionMap permissions;
                             Report report("GetFileAccessPermissions");
                             report
                                 .Result(host.Files().GetFileAccessPermissions(WideList(a->paths),
                                                                               &permissions))
                                 .Columns({{"path", "path"}, {"permissionName", "permission"}});
                             for (const auto& [path, permission] : permissions) {
                                 boost::json::object row{{"path", Json(path)}};
                                 PutNamed(row, "permission", permission, protocol::PermissionNames);
                                 report.Row(std::move(row));
                             }
                             return host.Print(report);
                         }),
             a->paths);

    CLI::App* nextId = AddCommand(
        app, "next-id", "new item numbers with their first revision (GenerateItemIDAndRevision)",
        Needs::Session, chosen, [a](Host& host) {
            ItemIdRevisionList ids;
            std::int32_t count = a->count;
            Report report("GenerateItemIDAndRevision");
            report
                .Result(host.Files().GenerateItemIDAndRevision(Wide(a->text), Wide(a->second),
                                                               count, &ids))
                .Columns({{"number", "item number"}, {"revision", "revision"}});
            for (const auto& [number, revision] : ids) {
                report.Row({{"number", Json(number)}, {"revision", Json(revision)}});
            }
            return host.Print(report);
        });
    nextId->add_option("FOLDER", a->text, "folder of the new files")
        ->required()
        ->check(PathCheck());
    nextId->add_option("EXTENSION", a->second, "file extension, e.g. par")
        ->required()
        ->check(TextCheck());
    nextId->add_option("--count", a->count, "how many numbers, 1 to 1000")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();

    AddCommand(app, "next-revision", "the next revision id of a design (GenerateNextRevisionID)",
               Needs::Session, chosen,
               [a](Host& host) {
                   GUserText revision;
                   const HRESULT hr = host.Files().GenerateNextRevisionID(Wide(a->text), &revision);
                   return host.Print(Report("GenerateNextRevisionID")
                                         .Result(hr)
                                         .Field("design", "design", Json(a->text))
                                         .Field("revision", "next revision", Json(revision)));
               })
        ->add_option("DESIGN", a->text, "the design's identifier (its path)")
        ->required()
        ->check(TextCheck());

    CLI::App* properties = AddCommand(
        app, "properties", "properties of files (GetProperties)", Needs::Session, chosen,
        [a](Host& host) {
            PropertyNameSet filter;
            for (const std::string& name : a->names) {
                filter.insert(Wide(name));
            }
            FilePropertyList files;
            Report report("GetProperties");
            report.Result(host.Files().GetProperties(WideList(a->paths), filter, &files))
                .Columns({{"path", "path"},
                          {"objectTypeName", "object type"},
                          {"name", "property"},
                          {"typeName", "type"},
                          {"values", "value"}});
            for (const FilePropertyEntry& file : files) {
                for (const ObjectTypeProperties& group : file.objectTypes) {
                    for (const PropertyEntry& property : group.properties) {
                        boost::json::array values;
                        for (const GUserText& value : property.values) {
                            values.push_back(Json(value));
                        }
                        boost::json::object row{{"path", Json(file.filePath)},
                                                {"name", Json(property.name)},
                                                {"values", std::move(values)}};
                        PutNamed(row, "objectType", group.objectType, protocol::ObjectTypeNames);
                        PutNamed(row, "type", property.type, protocol::PropertyTypeNames);
                        report.Row(std::move(row));
                    }
                }
            }
            return host.Print(report);
        });
    AddPaths(*properties, a->paths);
    properties->add_option("--name", a->names, "only properties of this name (repeatable)")
        ->check(TextCheck());

    CLI::App* setData =
        AddCommand(app, "set-data", "store a data object under a key (SetDataObject)",
                   Needs::Session, chosen, [a](Host& host) {
                       return host.Print(
                           Report("SetDataObject")
                               .Result(host.Files().SetDataObject(Wide(a->text), Wide(a->second)))
                               .Field("key", "key", Json(a->text)));
                   });
    setData->add_option("KEY", a->text, "primary key")->required()->check(TextCheck());
    setData->add_option("DATA", a->second, "the data")->required()->check(TextCheck());

    AddCommand(app, "error-text", "write a connector return code's message to the log (LogErrors)",
               Needs::Nothing, chosen,
               [a](Host& host) {
                   std::uint32_t code = a->code;
                   return host.Print(Report("LogErrors")
                                         .Result(host.Files().LogErrors(&code))
                                         .Given("code", "code", a->code)
                                         .Given("name", "name", Json(ReturnCodeName(a->code))));
               })
        ->add_option("CODE", a->code, "return code (see --log for the message)")
        ->required();
}

} // namespace

void AddFileCommands(CLI::App& app, Runner& chosen) {
    auto arguments = std::make_shared<Arguments>();
    AddLockCommands(app, chosen, arguments);
    AddIdentityCommands(app, chosen, arguments);
    AddVersionCommands(app, chosen, arguments);
    AddContainerCommands(app, chosen, arguments);
}

} // namespace vanto::host
