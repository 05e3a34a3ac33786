// What the dashboard's reads answer, apart from HTTP: each view from the store, the handler or the
// journal, as a JSON text. Dashboard.h describes the answers.
#pragma once

#include "Dashboard.h"

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vanto::emulator::views {

// A request's query, decoded.
using Query = std::map<std::string, std::string, std::less<>>;
Query ParseQuery(std::string_view query);

// A request a view cannot answer: its status and text.
class Refusal : public std::runtime_error {
public:
    Refusal(int code, const std::string& text) : std::runtime_error(text), status(code) {}
    int status;
};

// A whole number from the query, `fallback` when absent, at most `most`; Refusal otherwise.
std::int64_t Number(const Query& query, std::string_view key, std::int64_t fallback,
                    std::int64_t most);

std::string Status(Handler& handler, const DashboardOptions& options);
std::string Documents(Store& store, const Query& query);
std::string Locks(Store& store);
std::string Sessions(Store& store, const Handler& handler);
std::string Structure(Store& store, const Query& query);
std::string JournalPage(Journal& journal, const Query& query);

} // namespace vanto::emulator::views
