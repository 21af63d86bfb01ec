// Messages that differ in any one field are different: tests and the desktop compare them.
#include <gtest/gtest.h>

#include <functional>

#include "tests/unit/DesktopLink/Samples.h"

namespace desktop_link {

namespace {

// The changed copies differ from the original, which equals itself.
template <typename Type>
void ExpectEachToDiffer(const Type& original,
                        const std::vector<std::function<void(Type&)>>& changes) {
    EXPECT_EQ(original, Type(original));
    for (std::size_t i = 0; i < changes.size(); ++i) {
        Type changed = original;
        changes[i](changed);
        EXPECT_FALSE(changed == original) << "change " << i << " of " << changes.size();
    }
}

TEST(Equality, StructuresDifferByEachOfTheirNumbers) {
    ExpectEachToDiffer<Point>({1, 2}, {[](auto& p) { ++p.x; }, [](auto& p) { ++p.y; }});
    ExpectEachToDiffer<Size>({1, 2}, {[](auto& s) { ++s.width; }, [](auto& s) { ++s.height; }});
    ExpectEachToDiffer<Rect>({{1, 2}, {3, 4}},
                             {[](auto& r) { ++r.origin.y; }, [](auto& r) { ++r.size.width; }});
    ExpectEachToDiffer<Range>({1, 2}, {[](auto& r) { ++r.location; }, [](auto& r) { ++r.length; }});
    ExpectEachToDiffer<ElementReference>({501, 7},
                                         {[](auto& e) { ++e.pid; }, [](auto& e) { ++e.id; }});
}

TEST(Equality, EntriesDifferByKeyAndByValue) {
    const Value original{Dictionary{{"key", {std::int64_t{7}}}}};
    EXPECT_EQ(original, (Value{Dictionary{{"key", {std::int64_t{7}}}}}));
    EXPECT_NE(original, (Value{Dictionary{{"other", {std::int64_t{7}}}}}));
    EXPECT_NE(original, (Value{Dictionary{{"key", {std::int64_t{8}}}}}));
    EXPECT_NE(original, (Value{Dictionary{}}));
}

TEST(Equality, RequestsDifferByEachField) {
    ExpectEachToDiffer<Request>(
        FullRequest(),
        {[](auto& r) { r.operation = Operation::hello; }, [](auto& r) { ++r.element.id; },
         [](auto& r) { r.names.pop_back(); }, [](auto& r) { r.flag = !r.flag; },
         [](auto& r) { ++r.number; }, [](auto& r) { r.value = {}; },
         [](auto& r) { ++r.event.type; }, [](auto& r) { r.text += "x"; }});
}

TEST(Equality, EventsDifferByEachField) {
    ExpectEachToDiffer<Event>(
        FullRequest().event,
        {[](auto& e) { ++e.type; }, [](auto& e) { ++e.position.x; }, [](auto& e) { --e.flags; },
         [](auto& e) { ++e.keyCode; }, [](auto& e) { ++e.button; },
         [](auto& e) { ++e.sourceState; }, [](auto& e) { e.hasSource = !e.hasSource; },
         [](auto& e) { e.flagsWereSet = !e.flagsWereSet; }, [](auto& e) { ++e.tap; },
         [](auto& e) { ++e.scrollUnit; }, [](auto& e) { e.wheels.pop_back(); }});
}

TEST(Equality, RepliesSessionsAndApplicationsDifferByEachField) {
    ExpectEachToDiffer<Reply>(FullReply(),
                              {[](auto& r) { ++r.error; }, [](auto& r) { r.flag = !r.flag; },
                               [](auto& r) { r.values.pop_back(); }, [](auto& r) { r.text += "x"; },
                               [](auto& r) { r.session.reset(); }});
    ExpectEachToDiffer<Session>(*FullReply().session, {[](auto& s) { s.frontApplication.reset(); },
                                                       [](auto& s) { s.messagingTimeout *= 2; }});
    ExpectEachToDiffer<Application>(
        *FullReply().session->frontApplication,
        {[](auto& a) { ++a.pid; }, [](auto& a) { a.bundleIdentifier.reset(); },
         [](auto& a) { a.bundlePath.reset(); }, [](auto& a) { a.name += "x"; }});
}

}  // namespace

}  // namespace desktop_link
