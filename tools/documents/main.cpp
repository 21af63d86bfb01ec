// krt9-documents FOLDER: writes manual pages and completions into it, for the installation.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tools/documents/Documents.h"

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fputs("krt9-documents: name one folder\n", stderr);
        return 2;
    }
    for (const documents::Document& document : documents::AllDocuments()) {
        const auto path = std::filesystem::path(arguments[1]) / document.path;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary);
        file << document.text << std::flush;
        if (!file) {
            std::fprintf(stderr, "krt9-documents: %s cannot be written\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
