// Subcommands of the session interface: one per method.
#include "Host.h"

#include <memory>

namespace vanto::host {

void AddSessionCommands(CLI::App& app, Runner& chosen) {
    auto force = std::make_shared<bool>(false);
    AddCommand(app, "connect",
               "register with the connector and ask for its connection status "
               "(IsConnected)",
               Needs::Nothing, chosen,
               [force](Host& host) {
                   return host.Print(
                       Report("IsConnected").Answer(host.Session().IsConnected(*force)));
               })
        ->add_flag("--force", *force, "run the full path even after a first attempt");

    auto timeout = std::make_shared<int>(30000);
    AddCommand(app, "start",
               "launch the connector, wait until it is ready and register "
               "(StartCorvaneAndWaitForReadyState)",
               Needs::Nothing, chosen,
               [timeout](Host& host) {
                   bool timedOut = false;
                   const bool ready = host.Session().StartCorvaneAndWaitForReadyState(
                       *timeout, &timedOut, nullptr);
                   return host.Print(Report("StartCorvaneAndWaitForReadyState")
                                         .Answer(ready)
                                         .Field("timedOut", "timed out", timedOut));
               })
        ->add_option("--timeout", *timeout, "milliseconds to wait")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();

    AddCommand(
        app, "session", "the signed-in session: user, log paths, e-mail (GetSessionInfo)",
        Needs::Session, chosen, [](Host& host) {
            SessionInfo info;
            const HRESULT hr = host.Session().GetSessionInfo(&info);
            return host.Print(
                Report("GetSessionInfo")
                    .Result(hr)
                    .Field("authenticatedUserName", "user", Json(info.authenticatedUserName))
                    .Field("corvaneLogPath", "connector log", Json(info.corvaneLogPath))
                    .Field("cloudGatewayLogPath", "gateway log", Json(info.cloudGatewayLogPath))
                    .Field("userEmail", "e-mail", Json(info.userEmail)));
        });

    AddCommand(app, "roots", "the folders the connector synchronises (GetRootFolders)",
               Needs::Session, chosen, [](Host& host) {
                   RootFolderSet roots;
                   Report report("GetRootFolders");
                   report.Result(host.Session().GetRootFolders(&roots))
                       .Columns({{"folder", "root folder"}});
                   for (const GUserText& root : roots) {
                       report.Row({{"folder", Json(root)}});
                   }
                   return host.Print(report);
               });

    AddCommand(app, "user", "the logged-on user (GetCurrentLoggedInUserInfo)", Needs::Session,
               chosen, [](Host& host) {
                   LoggedInUserInfo user;
                   const HRESULT hr = host.Session().GetCurrentLoggedInUserInfo(&user);
                   return host.Print(
                       Report("GetCurrentLoggedInUserInfo")
                           .Result(hr)
                           .Field("loginName", "login name", Json(user.loginName))
                           .Field("displayName", "display name", Json(user.displayName))
                           .Field("email", "e-mail", Json(user.email)));
               });

    struct Question {
        const char* name;
        const char* help;
        const char* operation;
        Needs needs;
        bool (IVANTOSession::*method)();
    };
    static const Question questions[] = {
        {"running", "is the connector running (IsCorvaneRunning)", "IsCorvaneRunning",
         Needs::Nothing, &IVANTOSession::IsCorvaneRunning},
        {"installed", "is the connector installed (IsCorvaneInstalled)", "IsCorvaneInstalled",
         Needs::Nothing, &IVANTOSession::IsCorvaneInstalled},
        {"offline", "is the connector offline, after registering (IsCorvaneInOffLineMode)",
         "IsCorvaneInOffLineMode", Needs::Session, &IVANTOSession::IsCorvaneInOffLineMode}};
    for (const Question& question : questions) {
        AddCommand(app, question.name, question.help, question.needs, chosen,
                   [&question](Host& host) {
                       return host.Print(
                           Report(question.operation).Answer((host.Session().*question.method)()));
                   });
    }

    AddCommand(app, "deregister",
               "register, then deregister from the connector "
               "(DeRegisterFromCorvane)",
               Needs::Session, chosen, [](Host& host) {
                   host.Session().DeRegisterFromCorvane();
                   return host.Print(Report("DeRegisterFromCorvane"));
               });
}

} // namespace vanto::host
