// Writes one starting input per readable record into the folder given: the record's index byte
// followed by its sample answer, named after the command.
#include "RecordTypes.h"

#include <cstdio>
#include <fstream>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    int index = 0;
    bool written = true;
    vanto::fuzz::ForEachReadableRecord([&](auto sample) {
        std::ofstream out(std::string(argv[1]) + "/answer-" + sample.name,
                          std::ios::binary | std::ios::trunc);
        out.put(static_cast<char>(index++));
        out << sample.output;
        written = written && static_cast<bool>(out);
    });
    return written ? 0 : 1;
}
