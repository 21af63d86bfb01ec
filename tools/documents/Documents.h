// Everything that is generated from the programs' tables: manual pages and completions.
#pragma once

#include <string>
#include <vector>

namespace documents {

struct Document {
    std::string path;  // where it is installed, below the folder of shared data
    std::string text;
};

std::vector<Document> AllDocuments();

}  // namespace documents
