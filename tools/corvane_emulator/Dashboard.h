// The emulator's dashboard: a page and its HTTP interface on 127.0.0.1, served on the emulator's
// own io_context (so it never runs beside a command), on a port of its own.
//
// Where and who
// - The port is the system's choice unless `serve --dashboard-port N`. At start the emulator
//   prints `dashboard: http://127.0.0.1:PORT/?token=T` and writes "DashboardPort" and
//   "DashboardToken" to its endpoint file; `corvane_emulator dashboard [--data DIR] [--open]`
//   prints that URL (and opens the user's browser). A new token at each start.
// - Checked in this order:
//   1. Host must be `127.0.0.1:PORT` or `localhost:PORT`, else 403 (DNS rebinding).
//   2. The token, as `?token=T` or the cookie `corvane_dashboard=T`, else 401.
//      `GET /?token=T` answers 303 to `/` with
//      `Set-Cookie: corvane_dashboard=T; HttpOnly; SameSite=Strict; Path=/`.
//   3. A path that exists but not for this method: 405 with `Allow`. Unknown paths: 404.
//   4. A POST needs `Origin: http://` + the request's Host, else 403.
// - Every answer carries `Content-Security-Policy: default-src 'self'; style-src 'self';
//   script-src 'self'`, `Cache-Control: no-store`, `Referrer-Policy: no-referrer` and
//   `X-Content-Type-Options: nosniff`. Errors answer `{"Error": "text"}` with their status.
//   Neither the token nor the connector's secret appears in a page, the log or the journal.
//
// Assets: `GET /` (index.html), `/app.js`, `/app.css` and any other file of the sources'
// `dashboard/` folder by its name, compiled into the program.
//
// Reading (JSON; numbers in the query are whole numbers, anything else is 400)
// - `GET /api/status`: the control action "status" answer plus "Desktop" (the user and data
//   folder of this emulator) and "Cloud" (the shared database's path, or null).
// - `GET /api/documents?q=TEXT&offset=N&limit=N` (limit at most 500, default 100; q matches name
//   or path, ignoring case) → `{"Total", "Offset", "Items": [doc...]}` ordered by path; doc =
//   `{"Path", "DocumentId", "Name", "Revision", "Version", "CloudVersion", "LockedBy",
//   "LockedAt", "LockExpires", "Permissions": {"Ada Byrne": "write", ...}}` (LockedBy "" when
//   free; permission names "none", "read", "write").
// - `GET /api/locks` → `{"Items": [{"Path", "DocumentId", "LockedBy", "LockedAt",
//   "LockExpires"}]}`: every lock in the store (on a shared cloud, every desktop's).
// - `GET /api/sessions` → `{"Items": [{"Session", "Pid", "Product", "Version", "Since",
//   "User"}]}`: the sessions in the store; Product and Version (the client's full name) are known
//   for clients registered since this emulator started, "" otherwise.
// - `GET /api/structure?document=ID&direction=children|parents` → `{"Root": node}`, node =
//   `{"DocumentId", "Path", "Name", "Relation", "Children": [node...], "Repeated", "Cycle"}`.
//   Relation is the type of the link to the node above ("" for the root). A document met again
//   comes once more with Repeated true (Cycle true when it is its own ancestor) and no children.
//   ID is a document id or a path; unknown: 404.
// - `GET /api/journal?before=SEQ&limit=N&command=C&user=U&errors=1` → `{"Items": [entry...]}`,
//   newest first (limit at most 500, default 200). entry = `{"Seq", "Time" (UTC, ms),
//   "DurationMs" (without a fault's latency), "Operation" (execute, register, deregister,
//   control), "Command" (the control's action for a control), "Session", "User", "Desktop",
//   "Request", "Answer" (JSON, or a string when the text is none), "Errors": [{"Code", "Name"}],
//   "Fault": {"LatencyMs", "FailCode"} or null}`.
// - `GET /api/journal/export` → `application/x-ndjson` with `Content-Disposition: attachment`:
//   every kept entry, oldest first, one a line; the same as `corvane_emulator journal --export`.
// - `GET /api/events` (server-sent events): starts with `retry: 1000`, then from the
//   `Last-Event-ID` header or `?after=SEQ` every kept entry after it (`id: SEQ`, `event:
//   journal`, `data: entry`), then live; `event: changed` / `data: {}` after each batch of
//   entries (anything may have changed); a comment line every 15 s. Sequence numbers go on
//   across restarts: with a fixed `--dashboard-port` a page that asks `?after=` its last SEQ
//   loses and repeats nothing. A subscriber that falls behind by more than MaxQueuedBytes is
//   dropped (its EventSource reconnects and resumes).
//
// Acting
// - `POST /api/control` with a control request as body (`{"Action": "lock", "User": ...,
//   "Path": ...}`, unlock, save, offline, online, signout, signin, fault {Command, LatencyMs,
//   FailCode, Times}, clear-faults, reset; the reads status, documents and locks too) → the
//   answer `corvane_emulator <action>` gets, through the same Handler code: 200 when "Ok" is
//   true, 400 when the request is wrong in itself ("BadRequest"), 409 otherwise. "stop": 403.
#pragma once

#include "Handler.h"
#include "Journal.h"
#include "Store.h"

#include <boost/asio/io_context.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace vanto::emulator {

struct DashboardOptions {
    std::uint16_t port = 0;
    std::string desktop; // this emulator's name: its user and data folder
    std::string cloud;   // the shared database, or empty
};

class Dashboard {
public:
    static constexpr std::size_t MaxConnections = 64;
    static constexpr std::size_t MaxRequestBytes = 64 * 1024;
    // Unsent events one subscriber may have before it is dropped.
    static constexpr std::size_t MaxQueuedBytes = 4 * 1024 * 1024;
    static constexpr int HeartbeatSeconds = 15;

    Dashboard(boost::asio::io_context& io, Handler& handler, Store& store, Journal& journal,
              DashboardOptions options);
    ~Dashboard();
    Dashboard(const Dashboard&) = delete;
    Dashboard& operator=(const Dashboard&) = delete;

    std::uint16_t Port() const;
    const std::string& Token() const;
    // The address that opens the page, with the token.
    std::string Url() const;

    // What its connections share (Dashboard.cpp).
    struct State;

private:
    std::shared_ptr<State> state_;
};

// The page's files, compiled in (generated from the dashboard/ folder).
struct DashboardAsset {
    const char* name; // "index.html"
    const unsigned char* data;
    std::size_t size;
};
extern const DashboardAsset DashboardAssets[];
extern const std::size_t DashboardAssetCount;

} // namespace vanto::emulator
