// Subcommands of the file-services interface, one per method; the structure ones are in
// StructureCommands.cpp.
#include "Host.h"

#include <memory>

namespace vanto::host {

namespace {

// What the subcommands of this file take from the command line. One per program run, so the
// parsed values can live here while the chosen runner uses them.
struct Arguments {
    std::vector<std::string> paths;
    std::string text;
    std::string second;
    std::vector<std::string> names;
    bool flag = false;
    int count = 1;
    std::int32_t status = 0;
};

Report::Layout Blocks = Report::Layout::Blocks;

// What a check-out came to for one file, in words: a file held by someone else is refused.
std::string Outcome(const FileLockStatus& lock) {
    if (!lock.isCheckedOut) {
        return "not checked out";
    }
    return lock.isCheckedOutByCurrentUser ? "checked out"
                                          : "refused: held by " + lock.checkedOutBy.Narrow();
}

Report LockReport(const char* operation, HRESULT hr, const FileLockStatusMap& files,
                  bool withNewVersion, bool withOutcome = false) {
    Report report(operation);
    report.Result(hr);
    std::vector<Column> columns{{"path", "path"},
                                {"checkedOut", "checked out"},
                                {"checkedOutByMe", "by me"},
                                {"checkedOutBy", "holder"}};
    if (withNewVersion) {
        columns.push_back({"newVersionAvailable", "newer version"});
    }
    if (withOutcome) {
        columns.push_back({"outcome", "outcome"});
    }
    report.Columns(columns);
    for (const auto& [path, lock] : files) {
        boost::json::object row{{"path", Json(path)},
                                {"checkedOut", lock.isCheckedOut},
                                {"checkedOutByMe", lock.isCheckedOutByCurrentUser},
                                {"checkedOutBy", Json(lock.checkedOutBy)}};
        if (withNewVersion) {
            row["newVersionAvailable"] = lock.isNewVersionAvailable;
        }
        if (withOutcome) {
            row["outcome"] = Outcome(lock);
        }
        report.Row(std::move(row));
    }
    return report;
}

FileLockStatusMap LockMap(const std::vector<std::string>& paths) {
    FileLockStatusMap files;
    for (const std::string& path : paths) {
        files[Wide(path)];
    }
    return files;
}

void AddLockCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    AddPaths(*AddCommand(app, "checkout", "lock files for the signed-in user (CheckOut)",
                         Needs::Session, chosen,
                         [a](Host& host) {
                             FileLockStatusMap files = LockMap(a->paths);
                             const HRESULT hr = host.Files().CheckOut(&files);
                             return host.Print(LockReport("CheckOut", hr, files, false, true));
                         }),
             a->paths);

    AddPaths(*AddCommand(app, "checkin", "unlock files (CheckIn)", Needs::Session, chosen,
                         [a](Host& host) {
                             FileCheckInList files;
                             for (const std::string& path : a->paths) {
                                 files.push_back(FileCheckInEntry{Wide(path), 0, GUserText()});
                             }
                             Report report("CheckIn");
                             report.Result(host.Files().CheckIn(&files))
                                 .Columns({{"path", "path"},
                                           {"errorCode", "return code"},
                                           {"lockedBy", "locked by"}});
                             for (const FileCheckInEntry& file : files) {
                                 report.Row({{"path", Json(file.fileName)},
                                             {"errorCode", file.errorCode},
                                             {"lockedBy", Json(file.lockedBy)}});
                             }
                             return host.Print(report);
                         }),
             a->paths);

    CLI::App* lockStatus =
        AddCommand(app, "lock-status", "who holds each file's lock (GetCheckOutStatus)",
                   Needs::Session, chosen, [a](Host& host) {
                       FileLockStatusMap files = LockMap(a->paths);
                       const HRESULT hr = host.Files().GetCheckOutStatus(&files, a->flag);
                       return host.Print(LockReport("GetCheckOutStatus", hr, files, a->flag));
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
                       .Field("name", "name", Json(a->text))
                       .Columns({{"revision", "design revision"}});
                   for (const GUserText& name : names) {
                       report.Row({{"revision", Json(name)}});
                   }
                   return host.Print(report);
               })
        ->add_option("NAME", a->text, "design name")
        ->required()
        ->check(TextCheck());
}

void AddContainerCommands(CLI::App& app, Runner& chosen, const std::shared_ptr<Arguments>& a) {
    AddCommand(app, "containers",
               "projects available to the signed-in user "
               "(GetAvailableContainers)",
               Needs::Session, chosen, [a](Host& host) {
                   ContainerList containers;
                   std::int32_t status = a->status;
                   Report report("GetAvailableContainers");
                   report.Result(host.Files().GetAvailableContainers(&containers, &status))
                       .Field("status", "status", status)
                       .Columns({{"containerName", "name"},
                                 {"localFilePath", "local folder"},
                                 {"containerId", "id"},
                                 {"containerUrn", "URN"},
                                 {"collaborationSpaceId", "collaboration space"}});
                   for (const ContainerEntry& c : containers) {
                       report.Row({{"containerName", Json(c.containerName)},
                                   {"localFilePath", Json(c.localFilePath)},
                                   {"containerId", Json(c.containerId)},
                                   {"containerUrn", Json(c.containerUrn)},
                                   {"collaborationSpaceId", Json(c.collaborationSpaceId)}});
                   }
                   return host.Print(report);
               });

    AddCommand(app, "sync-project", "have the connector synchronise a project (AddProjectToSync)",
               Needs::Session, chosen,
               [a](Host& host) {
                   std::int32_t status = a->status;
                   const HRESULT hr = host.Files().AddProjectToSync(Wide(a->text), &status);
                   return host.Print(Report("AddProjectToSync")
                                         .Result(hr)
                                         .Field("project", "project", Json(a->text))
                                         .Field("status", "status", status));
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
                                 .Columns({{"path", "path"}, {"permission", "permission"}});
                             for (const auto& [path, permission] : permissions) {
                                 report.Row({{"path", Json(path)}, {"permission", permission}});
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
    nextId->add_option("--count", a->count, "how many numbers")->capture_default_str();

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

    CLI::App* properties =
        AddCommand(app, "properties", "properties of files (GetProperties)", Needs::Session, chosen,
                   [a](Host& host) {
                       PropertyNameSet filter;
                       for (const std::string& name : a->names) {
                           filter.insert(Wide(name));
                       }
                       FilePropertyList files;
                       Report report("GetProperties");
                       report.Result(host.Files().GetProperties(WideList(a->paths), filter, &files))
                           .Columns({{"path", "path"},
                                     {"objectType", "object type"},
                                     {"name", "property"},
                                     {"type", "type"},
                                     {"values", "value"}});
                       for (const FilePropertyEntry& file : files) {
                           for (const ObjectTypeProperties& group : file.objectTypes) {
                               for (const PropertyEntry& property : group.properties) {
                                   boost::json::array values;
                                   for (const GUserText& value : property.values) {
                                       values.push_back(Json(value));
                                   }
                                   report.Row({{"path", Json(file.filePath)},
                                               {"objectType", group.objectType},
                                               {"name", Json(property.name)},
                                               {"type", property.type},
                                               {"values", std::move(values)}});
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
                   std::uint32_t code = static_cast<std::uint32_t>(a->count);
                   return host.Print(Report("LogErrors")
                                         .Result(host.Files().LogErrors(&code))
                                         .Field("code", "code", a->count));
               })
        ->add_option("CODE", a->count, "return code (see --log for the message)")
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
