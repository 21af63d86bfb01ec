#!/usr/bin/env python3
"""Writes a desktop with an editing application in front, as a scene (see docs/scenes.md).

    scripts/make-editor-scene.py VERSION > scenes/editor-VERSION.json
    scripts/make-editor-scene.py --table        the table of releases in docs/scenes.md

VERSION is the editor's short version, such as 10.4.6. Identifiers of controls change between
versions; the ones that observation needs are in accessibility/EditorReleases.def.
"""

import json
import pathlib
import re
import sys

RELEASES = pathlib.Path(__file__).resolve().parent.parent / "accessibility" / "EditorReleases.def"


def releases():
    """[(row, version prefix, version of the scene, [timeline-index toggle, clip table, unread,
    timecode area, first and second clip name])]"""
    rows = re.findall(r"^EDITOR_RELEASE\((\w+), *(.*)\)$", RELEASES.read_text(), re.M)
    fields = [(row, *re.findall(r'"([^"]*)"', texts)) for row, texts in rows]
    return [(row, prefix, version, controls) for row, prefix, version, *controls in fields]


def table():
    """The rows as a table for docs/scenes.md."""
    lines = ["| row | versions that begin with | scene | timeline-index toggle | clip table | unread "
             "| timecode area | first clip name | second clip name |",
             "|---:|---|---|---|---|---|---|---|---|"]
    alike = re.findall(r'^EDITOR_RELEASE_ALIKE\((\w+), *"([^"]*)"\)$', RELEASES.read_text(), re.M)
    for index, (row, prefix, version, controls) in enumerate(releases()):
        prefixes = [prefix] + [other for name, other in alike if name == row]
        cells = [str(index), ", ".join(prefixes), f"`editor-{version}.json`",
                 *(f"`{control}`" for control in controls)]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


ROWS = {version: row for row, _, version, _ in releases()}
PROFILES = {version: tuple(controls) for _, _, version, controls in releases()}

RADIO_TOGGLE = ("kProfile10_1", "kProfile10_2")  # child 0 of a radio group, else a check box
NAME_IN_TEXT_FIELD = ("kProfile10_3",)  # a clip's cell holds a text field with the name

POSITION_FIELD = "_NS:128"  # the control whose position is reported without offset since 10.3

EDITOR = "com.apple.FinalCut"

CLIPS = [
    "Opening Titles", "Harbour Wide", "Interview Anna 1", "Interview Anna 2", "Harbour Detail",
    "Gulls", "Interview Tom", "Workshop Wide", "Workshop Hands", "Lathe Close-up", "Sparks",
    "Interview Anna 3", "Evening Street", "Street Musician", "Crowd", "Fireworks 1",
    "Fireworks 2", "Interview Tom 2", "Boat Leaves", "Closing Titles",
]


class Editor:
    def __init__(self, version):
        self.version = version
        (self.toggle, self.table, self.unused, self.area, self.name,
         self.second_name) = PROFILES[version]
        self.taken = {"_NS:%d" % 128, *PROFILES[version]}
        self.last = 7

    def identifier(self):
        """The next identifier that no special control has."""
        self.last += 1
        while "_NS:%d" % self.last in self.taken:
            self.last += 1
        return "_NS:%d" % self.last

    def element(self, role, frame, children=None, **attributes):
        made = {"AXRole": role}
        made.update(attributes)
        if "AXIdentifier" not in made and role not in ("AXRow", "AXCell", "AXSplitter"):
            made["AXIdentifier"] = self.identifier()
        made["AXPosition"], made["AXSize"] = frame[:2], frame[2:]
        if children is not None:
            made["AXChildren"] = children
        return made

    def button(self, title, x, y, **attributes):
        return self.element("AXButton", [x, y, 28, 22], AXTitle=title, AXEnabled=True, **attributes)

    def check_box(self, title, x, y, value=0, **attributes):
        return self.element("AXCheckBox", [x, y, 28, 22], AXTitle=title, AXValue=value,
                            **attributes)

    def text(self, value, x, y, width=120, **attributes):
        return self.element("AXStaticText", [x, y, width, 17], AXValue=value, **attributes)

    def radio_group(self, titles, x, y, selected=0, **attributes):
        buttons = [self.element("AXRadioButton", [x + 60 * i, y, 60, 20], AXTitle=title,
                                AXValue=int(i == selected)) for i, title in enumerate(titles)]
        return self.element("AXRadioGroup", [x, y, 60 * len(titles), 20], buttons, **attributes)

    def window_buttons(self, x, y):
        return [self.element("AXButton", [x + 20 * i, y, 14, 16], AXSubrole=subrole)
                for i, subrole in enumerate(("AXCloseButton", "AXMinimizeButton", "AXZoomButton"))]

    def toolbar(self):
        buttons = [self.button(title, 90 + 40 * i, 26)
                   for i, title in enumerate(("Import", "Keywords", "Background Tasks"))]
        boxes = [self.check_box(title, 1180 + 40 * i, 26, 1)
                 for i, title in enumerate(("Browser", "Timeline", "Inspector"))]
        share = self.element("AXPopUpButton", [1390, 26, 40, 22], AXTitle="Share")
        return self.element("AXGroup", [0, 22, 1440, 30], buttons + boxes + [share])

    def sidebar(self):
        rows = []
        for i, title in enumerate(("Harbour Film", "Smart Collections", "All Video", "Audio Only",
                                   "Favorites", "Projects", "Stills", "2018-06-02", "2018-06-03",
                                   "2018-06-09")):
            y = 90 + 20 * i
            label = self.text(title, 24, y)
            cell = self.element("AXCell", [4, y, 190, 20], [label])
            rows.append(self.element("AXRow", [4, y, 190, 20], [cell], AXSubrole="AXOutlineRow",
                                     AXDisclosureLevel=min(i, 1)))
        outline = self.element("AXOutline", [0, 84, 200, 400], rows, AXSelectedRows=[7])
        return self.element("AXScrollArea", [0, 84, 200, 400], [outline])

    def browser(self):
        search = self.element("AXTextField", [330, 58, 120, 22], AXSubrole="AXSearchField",
                              AXValue="", AXDescription="search")
        header = self.element("AXGroup", [200, 54, 300, 30], [
            self.element("AXPopUpButton", [210, 58, 90, 20], AXTitle="All Clips"),
            self.button("Clip Appearance", 300, 58), search])
        strips = [self.element("AXImage", [210 + 95 * (i % 3), 90 + 60 * (i // 3), 90, 50],
                               AXDescription=clip) for i, clip in enumerate(CLIPS)]
        grid = self.element("AXGrid", [200, 84, 300, 400], strips)
        return self.element("AXGroup", [0, 52, 500, 440], [
            self.element("AXSplitGroup", [0, 52, 500, 440], [
                self.sidebar(), self.element("AXSplitter", [199, 52, 1, 440]),
                self.element("AXGroup", [200, 52, 300, 440], [
                    header, self.element("AXScrollArea", [200, 84, 300, 400], [grid])])])])

    def viewer(self):
        controls = [self.button(title, 640 + 40 * i, 462) for i, title in enumerate(
            ("Go to Start", "Step Back", "Play", "Step Forward", "Go to End", "Full Screen"))]
        header = self.element("AXGroup", [500, 52, 600, 30], [
            self.text("1080p HD 25p, Stereo", 510, 58), self.text("Harbour Film", 760, 58),
            self.element("AXMenuButton", [1010, 58, 40, 20], AXTitle="Zoom"),
            self.element("AXMenuButton", [1055, 58, 40, 20], AXTitle="View")])
        return self.element("AXGroup", [500, 52, 600, 440], [
            header, self.element("AXImage", [510, 84, 580, 370], AXDescription="canvas"),
            self.element("AXGroup", [500, 456, 600, 36],
                         controls + [self.text("01:00:00:00", 570, 464, 80)])])

    def parameter(self, name, value, y, **attributes):
        return self.element("AXGroup", [1100, y, 340, 24], [
            self.text(name, 1110, y), self.element(
                "AXSlider", [1230, y, 100, 16], AXValue=value, AXMinValue=-100, AXMaxValue=100,
                AXValueIncrement=1),
            self.element("AXTextField", [1340, y, 50, 20], AXValue=str(value), **attributes),
            self.button("Keyframe " + name, 1395, y)])

    def color_board(self):
        pucks = [self.button(name, 1130 + 60 * i, 400, AXDescription=name + " puck")
                 for i, name in enumerate(("Global", "Shadows", "Midtones", "Highlights"))]
        return self.element("AXSplitGroup", [1100, 380, 340, 100],
                            [self.element("AXGroup", [1100, 380, 340, 100], pucks)])

    def inspector(self):
        names = [self.text("", 1110, 84, 200, AXIdentifier=self.name, AXDescription="clip name")]
        if self.second_name != self.name:
            names.append(self.text("", 1110, 100, 200, AXIdentifier=self.second_name))
        parameters = [self.parameter(name, value, 130 + 26 * i) for i, (name, value) in enumerate(
            (("Opacity", 100), ("Position X", 0), ("Position Y", 0), ("Rotation", 0),
             ("Scale", 100), ("Volume", -6)))]
        parameters.append(self.parameter("Anchor", 0, 290, AXIdentifier=POSITION_FIELD))
        return self.element("AXGroup", [1100, 52, 340, 440], [
            self.radio_group(("Video", "Color", "Audio", "Info"), 1110, 56),
            self.element("AXGroup", [1100, 80, 340, 44], names),
            self.element("AXScrollArea", [1100, 126, 340, 250], parameters), self.color_board(),
            self.button("Save Effects Preset", 1380, 470, AXIdentifier=self.unused)])

    def index_toggle(self):
        if ROWS[self.version] in RADIO_TOGGLE:
            return self.radio_group(("Index", "Lanes"), 10, 498, AXIdentifier=self.toggle)
        return self.check_box("Index", 10, 498, 1, AXIdentifier=self.toggle,
                              AXSubrole="AXToggle")

    def timeline_toolbar(self):
        left = [self.index_toggle()]
        left += [self.button(title, 120 + 40 * i, 498)
                 for i, title in enumerate(("Connect", "Insert", "Append", "Overwrite"))]
        tools = self.element("AXMenuButton", [300, 498, 50, 20], AXTitle="Select")
        right = [self.check_box(title, 1240 + 36 * i, 498, int(i != 2)) for i, title in enumerate(
            ("Skimming", "Audio Skimming", "Solo", "Snapping"))]
        return self.element("AXGroup", [0, 492, 1440, 30], left + [tools] + right)

    def clip_row(self, name, i):
        y = 560 + 18 * i
        if ROWS[self.version] in NAME_IN_TEXT_FIELD:
            field = self.element("AXTextField", [10, y, 150, 18], AXValue=name)
            cell = self.element("AXCell", [4, y, 160, 18], [self.element(
                "AXImage", [4, y, 8, 18]), field])
        else:
            cell = self.element("AXCell", [4, y, 160, 18], AXValue=name)
        place = self.element("AXCell", [164, y, 80, 18], AXValue=timecode(i * 125))
        return self.element("AXRow", [4, y, 240, 18], [cell, place], AXSubrole="AXTableRow")

    def timeline_index(self):
        table = self.element(
            "AXTable", [0, 556, 250, 320], [self.clip_row(name, i) for i, name in enumerate(CLIPS)],
            AXIdentifier=self.table, AXSelectedRows=[])
        return self.element("AXGroup", [0, 522, 250, 356], [
            self.radio_group(("Clips", "Tags", "Roles", "Captions"), 4, 526),
            self.element("AXTextField", [4, 546, 200, 20], AXSubrole="AXSearchField", AXValue="",
                         AXDescription="search"),
            self.element("AXScrollArea", [0, 556, 250, 320], [table])])

    def timeline(self):
        playhead = self.element("AXValueIndicator", [250, 522, 1, 356], AXDescription="Playhead",
                                AXValue=0, AXValueDescription="01:00:00:00", AXMinValue=0,
                                AXMaxValue=125 * len(CLIPS), AXOrientation="AXVerticalOrientation")
        items = [self.element("AXLayoutItem", [250 + 58 * i, 640, 56, 60], AXDescription=name,
                              AXValueDescription=timecode(i * 125))
                 for i, name in enumerate(CLIPS)]
        markers = [self.element("AXLayoutItem", [280 + 90 * i, 630, 8, 8],
                                AXDescription="Marker %d" % (i + 1)) for i in range(12)]
        area = self.element("AXLayoutArea", [250, 522, 1190, 356], [playhead] + items + markers,
                            AXIdentifier=self.area, AXDescription="Timeline")
        return self.element("AXGroup", [250, 522, 1190, 356], [
            self.element("AXScrollArea", [250, 522, 1190, 356], [
                area, self.element("AXScrollBar", [250, 864, 1190, 14], AXValue=0.0,
                                   AXOrientation="AXHorizontalOrientation")])])

    def main_window(self):
        top = self.element("AXSplitGroup", [0, 52, 1440, 440], [
            self.browser(), self.element("AXSplitter", [499, 52, 1, 440]), self.viewer(),
            self.element("AXSplitter", [1099, 52, 1, 440]), self.inspector()])
        lower = self.element("AXSplitGroup", [0, 522, 1440, 356], [
            self.timeline_index(), self.element("AXSplitter", [249, 522, 1, 356]),
            self.timeline()])
        bottom = self.element("AXGroup", [0, 492, 1440, 386], [self.timeline_toolbar(), lower])
        return self.element(
            "AXWindow", [0, 22, 1440, 878],
            self.window_buttons(8, 25) + [self.toolbar(), self.element(
                "AXSplitGroup", [0, 52, 1440, 826],
                [top, self.element("AXSplitter", [0, 491, 1440, 1]), bottom])],
            AXTitle="Final Cut Pro", AXSubrole="AXStandardWindow", AXMain=True)

    def tasks_window(self):
        tasks = [self.element("AXGroup", [420, 240 + 30 * i, 560, 30], [
            self.text(name, 430, 244 + 30 * i), self.element(
                "AXProgressIndicator", [600, 246 + 30 * i, 300, 12], AXValue=value),
            self.button("Pause " + name, 920, 242 + 30 * i)]) for i, (name, value) in enumerate(
                (("Transcoding", 0.25), ("Rendering", 1.0), ("Sharing", 0.0)))]
        return self.element("AXWindow", [400, 200, 600, 300], self.window_buttons(408, 203) + tasks,
                            AXTitle="Background Tasks", AXSubrole="AXFloatingWindow")

    def application(self):
        windows = [self.main_window(), self.tasks_window()]
        return {
            "bundleID": EDITOR, "name": "Final Cut Pro", "pid": 501,
            "info": {"CFBundleShortVersionString": self.version, "CFBundleSignature": "????",
                     "CFBundlePackageType": "APPL", "CFBundleDevelopmentRegion": "en"},
            "editor": {"clipTable": "/AXWindow/AXSplitGroup/AXGroup/AXSplitGroup/AXGroup"
                                    "/AXScrollArea/AXTable",
                       "clipNames": self.name_places(),
                       "playhead": "/AXWindow/AXSplitGroup/AXGroup/AXSplitGroup/AXGroup[1]"
                                   "/AXScrollArea/AXLayoutArea/AXValueIndicator",
                       "framesPerSecond": 25},
            "windows": windows}

    def name_places(self):
        """Addresses of the texts with the clip's name; one when both sources are the same text."""
        return ["/AXWindow/AXSplitGroup/AXSplitGroup/AXGroup[2]/AXGroup/%d" % i
                for i in range(1 if self.second_name == self.name else 2)]

    def script(self):
        """The clip is selected where each of the three sources tells its name, in their order."""
        texts = list(zip(self.name_places(), (self.name, self.second_name)))
        index = "/AXWindow/AXSplitGroup/AXGroup/AXGroup/0"
        close, reopen = (index + "/1", index + "/0") if ROWS[self.version] in RADIO_TOGGLE else (
            index, index)

        def forget(at, place):
            return {"at": at, "command": "remove", "element": place, "attribute": "AXIdentifier"}

        if len(texts) == 2:
            second_source = forget(3, texts[0][0])
        else:
            # Missed once by the search for the clip's name and once by that for the playhead, the
            # text is then found as the second source.
            second_source = {
                "at": 3, "command": "misbehave", "element": texts[0][0],
                "misbehaviour": {"read": {"multiple": {"error": -25204, "times": 2}}}}
        return [
            {"at": 1, "command": "selectClip", "clip": "Harbour Wide"},
            {"at": 2, "command": "playhead", "timecode": "01:00:05:00"},
            {"at": 2.5, "command": "playhead", "frames": 12},
            second_source,
            {"at": 3.5, "command": "selectClip", "clip": "Interview Anna 1"},
            {"at": 4, "command": "activate", "application": "com.example.notes"},
            {"at": 5, "command": "activate", "application": EDITOR},
            forget(6, texts[-1][0]),
            {"at": 6.5, "command": "selectClip", "clip": "Gulls"},
            # While the timeline index is closed, nobody sees what is selected.
            {"at": 7.5, "command": "press", "element": close},
            {"at": 8, "command": "selectClip", "clip": "Crowd"},
            {"at": 9, "command": "press", "element": reopen},
            *[{"at": 10, "command": "set", "element": place, "attribute": "AXIdentifier",
               "value": identifier} for place, identifier in texts],
            {"at": 11, "command": "selectClip", "row": None},
        ]


def timecode(frames):
    seconds = 3600 + frames // 25
    return "%02d:%02d:%02d:%02d" % (seconds // 3600, seconds // 60 % 60, seconds % 60, frames % 25)


def other_applications():
    note = {"AXRole": "AXWindow", "AXTitle": "Shot List", "AXSubrole": "AXStandardWindow",
            "AXPosition": [200, 120], "AXSize": [500, 600], "AXChildren": [
                {"AXRole": "AXScrollArea", "AXPosition": [200, 142], "AXSize": [500, 578],
                 "AXChildren": [{"AXRole": "AXTextArea", "AXIdentifier": "_NS:8",
                                 "AXValue": "Harbour, early light"}]}]}
    return [
        {"bundleID": "com.example.notes", "name": "Notes", "pid": 502,
         "info": {"CFBundleShortVersionString": "2.1", "CFBundleSignature": "note"},
         "windows": [note]},
        {"name": "renderer", "pid": 503, "windows": []},
    ]


def write(value, out, indentation):
    """One line for each element, so that two scenes can be compared line by line."""
    key = next((key for key in ("AXChildren", "windows") if key in value), None)
    facts = [json.dumps(name) + ": " + json.dumps(fact, ensure_ascii=False)
             for name, fact in value.items() if name != key]
    out.append(" " * indentation + "{ " + ", ".join(facts))
    if key is None:
        out[-1] += " }"
        return
    out[-1] += ", " + json.dumps(key) + ": ["
    for child in value[key]:
        write(child, out, indentation + 2)
        out[-1] += ","
    out[-1] = out[-1].rstrip(",") + "] }"


def main():
    if sys.argv[1:] == ["--table"]:
        print(table())
        return
    if len(sys.argv) != 2 or sys.argv[1] not in PROFILES:
        sys.exit("usage: make-editor-scene.py " + "|".join(PROFILES))
    scene = {
        "trusted": True, "screens": [{"frame": [0, 0, 1440, 900]}], "pointer": [100, 200],
        "front": EDITOR,
        "midi": {"devices": [
            {"name": "KRT-9 USB", "entities": [
                {"name": "Private", "sources": ["Private"], "destinations": ["Private"]},
                {"name": "Echo", "sources": ["Echo"], "destinations": ["Echo"]}]},
            {"name": "Piano", "entities": [
                {"name": "Keys", "sources": ["Keys"], "destinations": []}]}]},
    }
    editor = Editor(sys.argv[1])
    lines = [json.dumps(key) + ": " + json.dumps(value) for key, value in scene.items()]
    lines.append('"script": [\n    ' + ",\n    ".join(map(json.dumps, editor.script())) + "\n  ]")
    applications = []
    for application in [editor.application()] + other_applications():
        out = []
        write(application, out, 4)
        applications.append("\n".join(out))
    lines.append('"applications": [\n' + ",\n".join(applications) + "\n  ]")
    print("{ " + ",\n  ".join(lines) + "\n}")


if __name__ == "__main__":
    main()
