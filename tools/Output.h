// What krt9ctl prints: sentences for people, or one JSON object a line for programs.
#pragma once

#include <ostream>
#include <string>

#include "scenes/notation/Json.h"
#include "tools/ExitCode.h"
#include "tools/terminal/Progress.h"

namespace krt9ctl {

using scene_notation::Json;
using scene_notation::OneLine;

// Where the output goes. The descriptors are those behind the streams, -1 for streams in memory.
struct Streams {
    std::ostream& out;
    std::ostream& err;
    int outDescriptor = -1;
    int errDescriptor = -1;
    int inDescriptor = -1;  // of the standard input; -1 for none
};

class Output {
  public:
    Output(const Streams& streams, bool json);
    virtual ~Output() = default;

    bool IsJson() const { return json_; }

    // Whether results may have colours.
    bool HasColour() const;

    // The object for programs, the sentence for people (none when it is empty). Each line is
    // flushed, so that a reader at the other end of a pipe sees it at once.
    virtual void Result(const Json& object, const std::string& sentence);

    // A text that is the same for both, unchanged.
    void Document(const std::string& text);

    // The sentence on the error stream; for programs also the object with "error" and "message".
    void Problem(ExitCode code, const std::string& sentence, Json object = Json::object()) {
        Fail(code, sentence, std::move(object));
    }

    // A sentence on the error stream that is neither result nor failure.
    void Remark(const std::string& sentence);

    // What is being done, for people who wait for more than two seconds.
    void Progress(const std::string& activity) { progress_.Now(activity); }

    // The state of the output: ok as long as everything could be written, `pipeClosed` when nobody
    // reads it any more, `failure` for any other reason, which was reported on the error stream.
    // Nothing more is written after the first failure.
    ExitCode Status() const { return status_; }

    // Checks whether the reader is still there, without writing anything.
    void NoticeClosedPipe();

  protected:
    // As Problem.
    virtual void Fail(ExitCode code, const std::string& sentence, Json object);

  private:
    void Write(const std::string& text);
    void WriteError(const std::string& sentence, bool isFailure);

    Streams streams_;
    bool json_;
    terminal::Progress progress_;
    ExitCode status_ = ExitCode::ok;
};

}  // namespace krt9ctl
