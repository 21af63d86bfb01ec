#include "tools/report/Report.h"

#include <archive.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sys/utsname.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>
#include <variant>

#include "VEKCommon/Names.h"
#include "tools/ChosenApplication.h"
#include "tools/Client.h"
#include "tools/Interruption.h"
#include "tools/SceneDump.h"
#include "tools/Session.h"
#include "tools/Version.h"
#include "tools/doctor/Examination.h"
#include "tools/report/Material.h"
#include "tools/report/Readings.h"
#include "tools/report/Recorder.h"
#include "tools/report/Redaction.h"
#include "tools/trace/SignpostSource.h"
#include "tools/trace/Timeline.h"

namespace krt9ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFormat = 1;
constexpr double kNotice = 1;  // seconds, in which a driver notices that it is traced

// Paths of the user's own folder would tell the user's name.
std::string WithoutHome(std::string text) {
    const char* const variable = std::getenv("HOME");
    const std::string home = variable == nullptr ? "" : variable;
    for (std::size_t at = home.size() < 2 ? std::string::npos : text.find(home);
         at != std::string::npos; at = text.find(home, at)) {
        text.replace(at, home.size(), "~");
    }
    return text;
}

void LeaveHomeOut(Json& json) {
    if (json.is_string()) {
        json = WithoutHome(json.get<std::string>());
    } else if (json.is_structured()) {
        for (Json& part : json) {
            LeaveHomeOut(part);
        }
    }
}

std::string Now() {
    const std::time_t time = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm utc = {};
    gmtime_r(&time, &utc);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}Z", utc);
}

// The name of the machine is the user's own, and left out.
Json SystemObject() {
    utsname system = {};
    uname(&system);
    return {{"name", system.sysname}, {"release", system.release}, {"machine", system.machine}};
}

// What the driver does meanwhile, read now and then.
class Tracing {
  public:
    Tracing() {
        try {
            source_ = trace::OpenSignposts();
            problem_ = source_ ? "" : "another trace runs in this session";
        } catch (const std::runtime_error& error) {
            problem_ = error.what();
        }
    }

    // Waits for so long, less when a signal arrives.
    void Read(double seconds);

    // Waits until the driver has noticed that it is traced: its ticks have signposts.
    void AwaitDriver(double seconds);

    const std::string& Problem() const { return problem_; }
    const std::string& Lines() const { return lines_; }
    std::size_t Count() const { return count_; }

  private:
    void Take(const std::vector<std::string>& signposts);

    std::unique_ptr<trace::SignpostSource> source_;
    std::string problem_;
    trace::Timeline timeline_;
    std::string lines_;
    std::size_t count_ = 0;
    bool isNoticed_ = false;
};

void Tracing::Take(const std::vector<std::string>& signposts) {
    for (const std::string& line : signposts) {
        auto signpost = trace::ReadSignpost(line);
        isNoticed_ = isNoticed_ || signpost;
        const auto event = signpost ? timeline_.Add(std::move(*signpost)) : std::nullopt;
        if (event && !event->IsIdle()) {
            lines_ += OneLine(EventObject(*event)) + "\n";
            ++count_;
        }
    }
}

void Tracing::Read(double seconds) {
    constexpr double kLongestNap = 0.1;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    do {
        const std::chrono::duration<double> left = end - Clock::now();
        if (!source_ || source_->HasEnded()) {
            return;
        }
        Take(source_->Read(std::clamp(left.count(), 0.0, kLongestNap)));
    } while (Clock::now() < end && Interruption::Raised() == ExitCode::ok);
}

void Tracing::AwaitDriver(double seconds) {
    constexpr double kStep = 0.02;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (problem_.empty() && !isNoticed_ && Clock::now() < end &&
           Interruption::Raised() == ExitCode::ok) {
        Read(kStep);
    }
}

class Collection {
  public:
    Collection(double seconds, Context& context) : seconds_(seconds), context_(context) {}

    Report Collect();

  private:
    void Examine();
    void Dump();
    void ReadControls(const AccessibilityTree& tree);
    void AddTrace();
    Json About() const;
    void Add(const char* name, std::string content, std::string summary) {
        report_.parts.push_back({{name, std::move(content)}, std::move(summary)});
    }
    void LeaveOut(const char* name, const std::string& reason) {
        missing_[name] = WithoutHome(reason);
    }

    const double seconds_;
    Context& context_;
    const std::optional<ApplicationFacts> front_ = FrontApplication();
    Tracing tracing_;
    Report report_;
    Json missing_ = Json::object();
    Json driverVersion_;
    bool driverRuns_ = false;
};

void Collection::Examine() {
    context_.output.Progress("looking for what is wrong");
    std::string lines;
    std::size_t failing = 0;
    for (const doctor::Finding& finding : doctor::Examine(context_)) {
        Json object = FindingObject(finding);
        if (finding.check == "versions") {
            driverVersion_ = object.value("driver", Json());
        }
        if (finding.check == "driver") {
            driverRuns_ = finding.state == doctor::State::ok;
        }
        failing += finding.state == doctor::State::fails ? 1 : 0;
        LeaveHomeOut(object);
        lines += OneLine(object) + "\n";
    }
    Add(member::kDoctor, lines, fmt::format("what doctor finds: {} checks fail", failing));
}

void Collection::Dump() {
    if (!front_) {
        LeaveOut(member::kScene, "no application is in front");
        LeaveOut(member::kRecording, "no application is in front");
        return;
    }
    const auto read = ReadTree(front_->pid, false, context_);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        LeaveOut(member::kScene, ExplainAccessibility(*error));
        LeaveOut(member::kRecording, ExplainAccessibility(*error));
        return;
    }
    const auto& tree = std::get<AccessibilityTree>(read);
    Redactor redactor;
    const SceneDump dump =
        WriteScene(tree, *front_, true,
                   [&redactor](const TreeElement& element, const std::string& attribute,
                               scene_notation::Answer& answer) {
                       redactor.Redact(TextAttribute(element, "AXRole"), attribute, answer);
                   });
    Add(member::kScene, dump.text,
        fmt::format("{} elements of the application in front, their texts replaced",
                    tree.Elements().size() - 1));
    ReadControls(tree);
}

void Collection::ReadControls(const AccessibilityTree& tree) {
    if (!driverRuns_) {
        LeaveOut(member::kRecording, "no driver replied");
        return;
    }
    const Plan plan = Readings(tree);
    Client client(context_.timeout);
    Recorder recorder(nullptr);
    for (const Request& request : plan) {
        context_.output.Progress(
            fmt::format("request {} of {}", recorder.Requests() + 1, plan.size()));
        const Answer answer =
            recorder.Carry(request, [&client](const Request& each) { return client.Send(each); });
        tracing_.Read(0);
        if (DeliveryOf(answer.status).code != ExitCode::ok ||
            Interruption::Raised() != ExitCode::ok) {
            break;
        }
    }
    if (recorder.Requests() == 0) {
        LeaveOut(member::kRecording, "a request can name none of the application's elements");
        return;
    }
    Add(member::kRecording, recorder.Text({fmt::format("scene {}", member::kScene)}),
        fmt::format("{} requests that read controls, and the driver's replies",
                    recorder.Requests()));
}

void Collection::AddTrace() {
    if (tracing_.Problem().empty()) {
        Add(member::kTrace, tracing_.Lines(),
            fmt::format("{} requests, messages and ticks of the driver", tracing_.Count()));
    } else {
        LeaveOut(member::kTrace, tracing_.Problem());
    }
}

Json Collection::About() const {
    Json about{{"format", kFormat},
               {"made", Now()},
               {"krt9ctl", kVersion},
               {"driver", driverVersion_},
               {"libraries", {{"companion", kVersion}, {"libarchive", archive_version_string()}}},
               {"system", SystemObject()}};
    if (front_) {
        about["application"] = Json::object();
        about["application"]["bundleID"] = front_->bundleIdentifier.value_or("");
        about["application"]["version"] = front_->shortVersion.value_or("");
    }
    about["missing"] = missing_;
    return about;
}

Report Collection::Collect() {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds_);
    if (doctor::LookAtPort(kDriverPortName).isThere) {
        tracing_.AwaitDriver(kNotice);
    }
    Examine();
    Dump();
    const std::chrono::duration<double> left = end - Clock::now();
    context_.output.Progress("tracing the driver");
    tracing_.Read(std::max(left.count(), 0.0));
    AddTrace();
    report_.parts.insert(report_.parts.begin(), {{member::kReport, About().dump(2) + "\n"},
                                                 "versions, and what could not be collected"});
    report_.editorIsInFront = front_ && front_->bundleIdentifier == kEditorBundleID;
    return report_;
}

}  // namespace

Report CollectReport(double seconds, Context& context) {
    CheckSession();
    return Collection(seconds, context).Collect();
}

}  // namespace krt9ctl
