// Runs the scripts of cfcollections.json: lists of steps over named objects, and what each gave. Of
// long scripts the results of the last steps were not kept.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>

class CollectionScript {
  public:
    ~CollectionScript();

    // Whether the layer has the functions of all steps that change an object, and of at least one
    // that queries an object. Run skips queries by functions that it does not have.
    static bool CanRun(const nlohmann::json& steps);

    // Empty when each step gives its result, else a message about the first that does not.
    std::string Run(const nlohmann::json& steps, const nlohmann::json& results);

  private:
    using Step = nlohmann::json;
    using Operation = nlohmann::json (CollectionScript::*)(const Step& step);
    static const std::map<std::string, Operation>& Operations();
    static bool IsQuestion(Operation operation);

    nlohmann::json MakeText(const Step& step);
    nlohmann::json MakeNumber(const Step& step);
    nlohmann::json MakePointer(const Step& step);
    nlohmann::json MakeConstant(const Step& step);
    nlohmann::json MakeData(const Step& step);
    nlohmann::json MakeDictionary(const Step& step);
    nlohmann::json MakeArray(const Step& step);
    nlohmann::json MakeCopy(const Step& step);

    nlohmann::json ChangeDictionary(const Step& step);
    nlohmann::json AskDictionary(const Step& step);
    nlohmann::json AppendToArray(const Step& step);
    nlohmann::json AskArray(const Step& step);
    nlohmann::json ChangeOrAskData(const Step& step);
    nlohmann::json AskAnyObject(const Step& step);
    nlohmann::json RetainOrRelease(const Step& step);
    nlohmann::json AskText(const Step& step);

    const void* Object(const Step& step, std::size_t index) const;
    template <typename Reference>
    Reference Object(const Step& step, std::size_t index) const;
    nlohmann::json NameOf(const void* object) const;
    void Keep(const Step& step, const void* object, bool owned = true);

    std::map<std::string, const void*> objects_;
    std::map<std::string, int> references_;  // how many of each object this script owns
};
