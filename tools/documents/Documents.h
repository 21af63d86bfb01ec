// Everything that is written from the tables of the programs: manual pages and completions.
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
