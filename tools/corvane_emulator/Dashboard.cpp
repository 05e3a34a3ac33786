// The dashboard's HTTP side: who may ask (host, token, origin), the routes, and the event stream.
// The answers themselves are in DashboardViews.cpp.
#include "Dashboard.h"

#include "DashboardViews.h"
#include "Text.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/json.hpp>

#include <deque>
#include <functional>
#include <list>
#include <optional>
#include <sstream>
#include <vector>

namespace vanto::emulator {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace json = boost::json;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;
using Text = std::shared_ptr<const std::string>;

constexpr const char* CookieName = "corvane_dashboard";
constexpr const char* Policy = "default-src 'self'; style-src 'self'; script-src 'self'";
constexpr int IdleSeconds = 30;
// Entries one catching-up subscriber reads from the journal at a time.
constexpr std::int64_t CatchUpBatch = 200;

const std::pair<std::string_view, const char*> ContentTypes[] = {
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".json", "application/json"}};

const char* ContentType(std::string_view name) {
    for (const auto& [extension, type] : ContentTypes) {
        if (name.size() >= extension.size() &&
            name.substr(name.size() - extension.size()) == extension) {
            return type;
        }
    }
    return "application/octet-stream";
}

std::string_view View(beast::string_view text) {
    return {text.data(), text.size()};
}

// The value of one cookie in a Cookie header; empty when it is not there.
std::string_view Cookie(std::string_view header, std::string_view name) {
    while (!header.empty()) {
        const std::size_t end = std::min(header.find(';'), header.size());
        std::string_view pair = header.substr(0, end);
        while (!pair.empty() && pair.front() == ' ') {
            pair.remove_prefix(1);
        }
        if (pair.size() > name.size() && pair.substr(0, name.size()) == name &&
            pair[name.size()] == '=') {
            return pair.substr(name.size() + 1);
        }
        header.remove_prefix(std::min(end + 1, header.size()));
    }
    return {};
}

std::string SseEvent(std::int64_t seq, const std::string& entry) {
    return "id: " + std::to_string(seq) + "\nevent: journal\ndata: " + entry + "\n\n";
}

} // namespace

class Subscriber;

struct Dashboard::State : std::enable_shared_from_this<Dashboard::State> {
    State(asio::io_context& context, Handler& h, Store& s, Journal& j, DashboardOptions o)
        : io(context), handler(h), store(s), journal(j), options(std::move(o)),
          acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), options.port)),
          token(RandomHex(24)) {}

    void Accept();
    // Journal entries since the last turn of the io_context go to every subscriber together.
    void Publish(const JournalEntry& entry);
    void Flush();

    asio::io_context& io;
    Handler& handler;
    Store& store;
    Journal& journal;
    DashboardOptions options;
    tcp::acceptor acceptor;
    std::string token;
    std::size_t connections = 0;
    std::list<Subscriber*> subscribers;
    std::vector<std::pair<std::int64_t, Text>> pending;
    bool flushPosted = false;
};

// One page's event stream: the kept entries after its last one, read from the journal a batch at
// a time, then the live ones. The socket is only written to; a read waits for its end.
class Subscriber : public std::enable_shared_from_this<Subscriber> {
public:
    Subscriber(std::shared_ptr<Dashboard::State> state, tcp::socket socket, std::int64_t after)
        : state_(std::move(state)), socket_(std::move(socket)), heartbeat_(state_->io),
          cursor_(after), place_(state_->subscribers.insert(state_->subscribers.end(), this)) {
        ++state_->connections;
    }
    ~Subscriber() {
        state_->subscribers.erase(place_);
        --state_->connections;
    }

    void Start() {
        Queue(std::make_shared<const std::string>(
            std::string("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n"
                        "Cache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n"
                        "Content-Security-Policy: ") +
            Policy + "\r\nConnection: close\r\n\r\nretry: 1000\n\n"));
        socket_.async_wait(tcp::socket::wait_read,
                           [self = shared_from_this()](error_code) { self->Drop(); });
        Beat();
    }

    // A live entry: taken unless the journal will give it while catching up.
    void Offer(std::int64_t seq, const Text& event) {
        if (!catchingUp_ && seq > cursor_) {
            cursor_ = seq;
            Queue(event);
        }
    }

    // Anything live; a subscriber already behind by more than it may be is dropped.
    void Queue(const Text& event) {
        if (!socket_.is_open()) {
            return;
        }
        if (queuedBytes_ > 0 && queuedBytes_ + event->size() > Dashboard::MaxQueuedBytes) {
            return Drop();
        }
        Append(event);
        Pump();
    }

private:
    void Append(const Text& event) {
        queuedBytes_ += event->size();
        queue_.push_back(event);
    }

    void Beat() {
        heartbeat_.expires_after(std::chrono::seconds(Dashboard::HeartbeatSeconds));
        heartbeat_.async_wait([weak = weak_from_this()](error_code error) {
            if (const auto self = weak.lock(); self && !error) {
                self->Queue(std::make_shared<const std::string>(": heartbeat\n\n"));
                self->Beat();
            }
        });
    }

    void Pump() {
        if (writing_ || !socket_.is_open()) {
            return;
        }
        if (queue_.empty() && catchingUp_) {
            const std::vector<JournalEntry> entries = state_->journal.After(cursor_, CatchUpBatch);
            catchingUp_ = !entries.empty();
            for (const JournalEntry& entry : entries) {
                Append(std::make_shared<const std::string>(SseEvent(entry.seq, entry.json)));
                cursor_ = entry.seq;
            }
        }
        if (queue_.empty()) {
            return;
        }
        writing_ = true;
        sending_.assign(queue_.begin(), queue_.end());
        queue_.clear();
        std::vector<asio::const_buffer> buffers;
        for (const Text& text : sending_) {
            buffers.push_back(asio::buffer(*text));
        }
        asio::async_write(socket_, buffers,
                          [self = shared_from_this()](error_code error, std::size_t written) {
                              self->writing_ = false;
                              self->queuedBytes_ -= written;
                              self->sending_.clear();
                              if (error) {
                                  return self->Drop();
                              }
                              self->Pump();
                          });
    }

    void Drop() {
        error_code ignored;
        socket_.close(ignored);
        heartbeat_.cancel();
        queue_.clear();
    }

    std::shared_ptr<Dashboard::State> state_;
    tcp::socket socket_;
    asio::steady_timer heartbeat_;
    std::int64_t cursor_; // the last entry queued
    bool catchingUp_ = true;
    bool writing_ = false;
    std::deque<Text> queue_;
    std::vector<Text> sending_;
    std::size_t queuedBytes_ = 0; // queued and being sent
    std::list<Subscriber*>::iterator place_;
};

void Dashboard::State::Publish(const JournalEntry& entry) {
    if (subscribers.empty()) {
        return;
    }
    pending.emplace_back(entry.seq,
                         std::make_shared<const std::string>(SseEvent(entry.seq, entry.json)));
    if (!flushPosted) {
        flushPosted = true;
        asio::post(io, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) {
                self->Flush();
            }
        });
    }
}

void Dashboard::State::Flush() {
    flushPosted = false;
    static const Text changed = std::make_shared<const std::string>("event: changed\ndata: {}\n\n");
    // A subscriber dropped on the way leaves the list once its last handler is done.
    for (Subscriber* subscriber :
         std::vector<Subscriber*>(subscribers.begin(), subscribers.end())) {
        for (const auto& [seq, event] : pending) {
            subscriber->Offer(seq, event);
        }
        subscriber->Queue(changed);
    }
    pending.clear();
}

// One HTTP connection: requests one after another, each checked, routed and answered.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
public:
    HttpConnection(std::shared_ptr<Dashboard::State> state, tcp::socket socket)
        : state_(std::move(state)), stream_(std::move(socket)) {
        ++state_->connections;
    }
    ~HttpConnection() { --state_->connections; }

    void Read() {
        parser_.emplace();
        parser_->header_limit(8 * 1024);
        parser_->body_limit(Dashboard::MaxRequestBytes);
        stream_.expires_after(std::chrono::seconds(IdleSeconds));
        http::async_read(stream_, buffer_, *parser_,
                         [self = shared_from_this()](error_code error, std::size_t) {
                             if (!error) {
                                 self->Answer(self->parser_->release());
                             }
                         });
    }

private:
    void Answer(Request request) {
        const std::string_view target = View(request.target());
        const std::size_t question = target.find('?');
        const std::string_view path = target.substr(0, question);
        const views::Query query = views::ParseQuery(
            question == std::string_view::npos ? "" : target.substr(question + 1));
        const int refused = RefusedWith(request, query, path);
        Response response;
        try {
            if (refused == 0 && path == "/api/events") {
                return Subscribe(request, query);
            }
            response = refused == 0 ? Route(request, query, path) : Refused(request, refused, path);
        } catch (const views::Refusal& refusal) {
            response = Error(request, refusal.status, refusal.what());
        } catch (const std::exception& error) {
            response = Error(request, 500, error.what());
        }
        Send(std::move(response));
    }

    // The status a request is refused with before it is routed; 0 when it may go on.
    int RefusedWith(const Request& request, const views::Query& query,
                    std::string_view path) const {
        const std::string port = ":" + std::to_string(state_->acceptor.local_endpoint().port());
        const std::string_view host = View(request[http::field::host]);
        if (host != "127.0.0.1" + port && host != "localhost" + port) {
            return 403;
        }
        const auto token = query.find("token");
        const std::string_view given = token != query.end()
                                           ? std::string_view(token->second)
                                           : Cookie(View(request[http::field::cookie]), CookieName);
        if (!SameSecret(given, state_->token)) {
            return 401;
        }
        const bool post = path == "/api/control";
        if (request.method() != (post ? http::verb::post : http::verb::get)) {
            return 405;
        }
        return post && View(request[http::field::origin]) != "http://" + std::string(host) ? 403
                                                                                           : 0;
    }

    static Response Refused(const Request& request, int status, std::string_view path) {
        Response response = Error(request, status, Reason(status));
        if (status == 405) {
            response.set(http::field::allow, path == "/api/control" ? "POST" : "GET");
        }
        return response;
    }

    Response Route(const Request& request, const views::Query& query, std::string_view path) {
        Dashboard::State& s = *state_;
        if (path == "/" && query.count("token") != 0) {
            Response response = Reply(request, http::status::see_other, "", "text/plain");
            response.set(http::field::location, "/");
            response.set(http::field::set_cookie, std::string(CookieName) + "=" + s.token +
                                                      "; HttpOnly; SameSite=Strict; Path=/");
            return response;
        }
        if (path == "/api/control") {
            return Control(request);
        }
        const std::pair<std::string_view, std::function<std::string()>> reads[] = {
            {"/api/status", [&] { return views::Status(s.handler, s.options); }},
            {"/api/documents", [&] { return views::Documents(s.store, query); }},
            {"/api/locks", [&] { return views::Locks(s.store); }},
            {"/api/sessions", [&] { return views::Sessions(s.store, s.handler); }},
            {"/api/structure", [&] { return views::Structure(s.store, query); }},
            {"/api/journal", [&] { return views::JournalPage(s.journal, query); }},
        };
        for (const auto& [route, read] : reads) {
            if (path == route) {
                return Reply(request, http::status::ok, read(), "application/json");
            }
        }
        if (path == "/api/journal/export") {
            std::ostringstream lines;
            s.journal.Export(lines);
            Response response =
                Reply(request, http::status::ok, lines.str(), "application/x-ndjson");
            response.set(http::field::content_disposition,
                         "attachment; filename=\"corvane-journal.jsonl\"");
            return response;
        }
        const std::string_view name = path == "/" ? "index.html" : path.substr(1);
        for (std::size_t i = 0; i < DashboardAssetCount; ++i) {
            const DashboardAsset& asset = DashboardAssets[i];
            if (name == asset.name) {
                return Reply(request, http::status::ok,
                             std::string(reinterpret_cast<const char*>(asset.data), asset.size),
                             ContentType(name));
            }
        }
        return Error(request, 404, "nothing at " + std::string(path));
    }

    // The same control the command line sends, through the Handler (and so into the journal).
    Response Control(const Request& request) {
        boost::system::error_code error;
        const json::value body = json::parse(request.body(), error);
        const json::value* action =
            !error && body.is_object() ? body.get_object().if_contains("Action") : nullptr;
        if (action != nullptr && *action == "stop") {
            return Error(request, 403, "the page may not stop the emulator");
        }
        const std::string answer = state_->handler.Handle("control", request.body()).text;
        const json::value parsed = json::parse(answer);
        const json::object& object = parsed.as_object();
        const int status = object.at("Ok") == true         ? 200
                           : object.contains("BadRequest") ? 400
                                                           : 409;
        return Reply(request, static_cast<http::status>(status), answer, "application/json");
    }

    void Subscribe(const Request& request, const views::Query& query) {
        const std::string_view last = View(request["Last-Event-ID"]);
        views::Query resume = query;
        if (!last.empty()) {
            resume["after"] = std::string(last);
        }
        const std::int64_t after = views::Number(resume, "after", 0, INT64_MAX);
        stream_.expires_never();
        std::make_shared<Subscriber>(state_, stream_.release_socket(), after)->Start();
    }

    static const char* Reason(int status) {
        switch (status) {
        case 401:
            return "the dashboard's token is missing or wrong: open the address the emulator "
                   "printed";
        case 403:
            return "refused: foreign host or origin";
        default:
            return "method not allowed";
        }
    }

    static Response Reply(const Request& request, http::status status, std::string body,
                          const char* type) {
        Response response(status, request.version());
        response.set(http::field::content_type, type);
        response.set(http::field::cache_control, "no-store");
        response.set("Content-Security-Policy", Policy);
        response.set("Referrer-Policy", "no-referrer");
        response.set("X-Content-Type-Options", "nosniff");
        response.keep_alive(request.keep_alive());
        response.body() = std::move(body);
        response.prepare_payload();
        return response;
    }

    static Response Error(const Request& request, int status, const std::string& text) {
        return Reply(request, static_cast<http::status>(status),
                     json::serialize(json::object{{"Error", text}}), "application/json");
    }

    void Send(Response response) {
        auto shared = std::make_shared<Response>(std::move(response));
        http::async_write(stream_, *shared,
                          [self = shared_from_this(), shared](error_code error, std::size_t) {
                              if (!error && shared->keep_alive()) {
                                  self->Read();
                              }
                          });
    }

    std::shared_ptr<Dashboard::State> state_;
    beast::tcp_stream stream_;
    beast::flat_buffer buffer_;
    std::optional<http::request_parser<http::string_body>> parser_;
};

void Dashboard::State::Accept() {
    acceptor.async_accept([weak = weak_from_this()](error_code error, tcp::socket socket) {
        const auto self = weak.lock();
        if (!self || !self->acceptor.is_open()) {
            return;
        }
        if (!error && self->connections < MaxConnections) {
            std::make_shared<HttpConnection>(self, std::move(socket))->Read();
        }
        self->Accept();
    });
}

Dashboard::Dashboard(asio::io_context& io, Handler& handler, Store& store, Journal& journal,
                     DashboardOptions options)
    : state_(std::make_shared<State>(io, handler, store, journal, std::move(options))) {
    journal.Hide(state_->token);
    journal.Listen([weak = std::weak_ptr<State>(state_)](const JournalEntry& entry) {
        if (const auto state = weak.lock()) {
            state->Publish(entry);
        }
    });
    state_->Accept();
}

Dashboard::~Dashboard() {
    error_code ignored;
    state_->acceptor.close(ignored);
}

std::uint16_t Dashboard::Port() const {
    return state_->acceptor.local_endpoint().port();
}

const std::string& Dashboard::Token() const {
    return state_->token;
}

std::string Dashboard::Url() const {
    return "http://127.0.0.1:" + std::to_string(Port()) + "/?token=" + state_->token;
}

} // namespace vanto::emulator
