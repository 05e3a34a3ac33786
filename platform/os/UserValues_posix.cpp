#include "os/TextConversion.h"
#include "os/UserValues.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::os {

namespace {

using Values = std::map<std::string, std::string>;

std::string& ScratchPath() {
    static std::string path;
    return path;
}

std::string HomeDirectory() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return home;
    }
    struct passwd entry {};
    struct passwd* found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::geteuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr) {
        return found->pw_dir;
    }
    return std::string();
}

// Empty when there is nowhere to keep the values.
std::string StorePath() {
    if (!ScratchPath().empty()) {
        return ScratchPath();
    }
    std::string folder;
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && *config == '/') {
        folder = config;
    } else {
        const std::string home = HomeDirectory();
        if (home.empty()) {
            return std::string();
        }
        folder = home + "/.config";
    }
    return folder + "/vanto/host-user-values";
}

bool MakeParentFolders(const std::string& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        const std::string folder = path.substr(0, slash);
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
            return false;
        }
    }
    return true;
}

// One value a line, "key=value"; backslash escapes keep "=", line breaks and itself apart.
std::string Escape(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '\\':
            escaped += "\\\\";
            break;
        case '=':
            escaped += "\\=";
            break;
        case '\n':
            escaped += "\\n";
            break;
        case '\r':
            escaped += "\\r";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

bool ParseLine(const std::string& line, std::string& key, std::string& value) {
    std::string* target = &key;
    for (std::size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if (c == '\\' && i + 1 < line.size()) {
            c = line[++i];
            *target += c == 'n' ? '\n' : (c == 'r' ? '\r' : c);
        } else if (c == '=' && target == &key) {
            target = &value;
        } else {
            *target += c;
        }
    }
    return target == &value;
}

Values Load(const std::string& path) {
    Values values;
    std::ifstream file(path, std::ios::binary);
    std::string line;
    while (std::getline(file, line)) {
        std::string key;
        std::string value;
        if (ParseLine(line, key, value)) {
            values[key] = value;
        }
    }
    return values;
}

// Written to a side file and renamed, so a reader never sees half a store.
bool Save(const std::string& path, const Values& values) {
    if (!MakeParentFolders(path)) {
        return false;
    }
    const std::string temporary = path + ".new";
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        for (const auto& [key, value] : values) {
            file << Escape(key) << '=' << Escape(value) << '\n';
        }
        file.flush();
        if (!file) {
            std::remove(temporary.c_str());
            return false;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

std::string Key(int scope, const std::wstring& name) {
    return std::to_string(scope) + '/' + WideToUtf8(name);
}

} // namespace

bool ReadUserValue(int scope, const std::wstring& name, std::wstring& value) {
    const std::string path = StorePath();
    if (path.empty()) {
        return false;
    }
    const Values values = Load(path);
    const auto found = values.find(Key(scope, name));
    if (found == values.end()) {
        return false;
    }
    value = Utf8ToWide(found->second);
    return true;
}

bool WriteUserValue(int scope, const std::wstring& name, const std::wstring& value) {
    const std::string path = StorePath();
    if (path.empty()) {
        return false;
    }
    Values values = Load(path);
    values[Key(scope, name)] = WideToUtf8(value);
    return Save(path, values);
}

void UseScratchUserValueStore(const std::wstring& tag) {
    if (tag.empty()) {
        ScratchPath().clear();
        return;
    }
    const char* temporary = std::getenv("TMPDIR");
    const std::string folder = temporary != nullptr && *temporary == '/' ? temporary : "/tmp";
    ScratchPath() = folder + "/vanto-user-values-" + WideToUtf8(tag);
}

void ClearUserValueStore() {
    if (!ScratchPath().empty()) {
        std::remove(ScratchPath().c_str());
    }
}

} // namespace platform::os
