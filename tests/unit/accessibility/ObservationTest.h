// What the tests of both observations share.
#pragma once

#include "VEKCommon/MessageCodes.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"

class ObservationTest : public DriverBesideEditor {
  protected:
    ObservationTest() { ChooseFirstStaticText(); }

    // The driver remembers where the clip's name was found, for the life of the process. Wherever
    // that was, after three ticks with nothing but the first static text it is that text.
    void ChooseFirstStaticText() {
        Profile() = 5;
        ShowStaticText("_NS:100", Text("whatever"));
        for (int tick = 0; tick < 3; ++tick) {
            driver_->ObserveFCPXClipSelectionTask();
        }
        driver_->ObserveFCPXClipSelectionChange();
        Sent();
    }

    // The one control of the one window.
    ElementReference ShowStaticText(const std::string& identifier, const Value& value) {
        ElementReference text = editor_.Add("AXStaticText", identifier);
        editor_.Set(text, "AXValue", value);
        editor_.ShowWindow({text});
        return text;
    }
};
