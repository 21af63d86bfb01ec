"""Looks at a page of `krt9ctl view` in a headless Chromium, as a person would.

usage: view_in_browser.py KRT9CTL OLD NEW HOSTILE

OLD and NEW are dumps; HOSTILE is one whose texts try to get out of the page. Prints what is wrong,
one sentence a line, and nothing when all is well.
"""

import base64
import hashlib
import http.server
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import urllib.request

PROBLEMS = []


def check(holds, sentence):
    if not holds:
        PROBLEMS.append(sentence)


class Counter(http.server.BaseHTTPRequestHandler):
    """What lies outside: nobody may come here."""
    visits = []

    def do_GET(self):
        self.visits.append(self.path)
        self.send_response(204)
        self.end_headers()

    def log_message(self, *_):
        pass


class Browser:
    """The few commands of the WebDriver protocol that are needed."""

    def __init__(self, profile):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.STDOUT, text=True)
        port = None
        for line in self.driver.stdout:
            match = re.search(r"started successfully on port (\d+)", line)
            if match:
                port = match.group(1)
                break
        threading.Thread(target=self.driver.stdout.read, daemon=True).start()
        self.base = f"http://127.0.0.1:{port}/session"
        options = {"args": ["--headless", "--no-sandbox", "--disable-gpu",
                            "--disable-dev-shm-usage", "--window-size=1400,1200",
                            f"--user-data-dir={profile}"]}
        created = self.call("", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": options, "goog:loggingPrefs": {"performance": "ALL"}}}})
        self.base += "/" + created["sessionId"]

    def call(self, path, body=None, method=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        with opener.open(request, timeout=60) as reply:
            return json.load(reply)["value"]

    def open(self, path):
        self.call("/url", {"url": pathlib.Path(path).as_uri()})

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": list(arguments)})

    def hover(self, selector):
        element = self.call("/element", {"using": "css selector", "value": selector})
        self.call("/actions", {"actions": [{
            "type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"},
            "actions": [{"type": "pointerMove", "duration": 0, "origin": element,
                         "x": 0, "y": 0}]}]})

    def type(self, selector, text):
        element = next(iter(self.call("/element", {"using": "css selector",
                                                   "value": selector}).values()))
        self.call(f"/element/{element}/clear", {})
        self.call(f"/element/{element}/value", {"text": text})

    def requested(self):
        """The addresses that the pages have asked for since the last call."""
        entries = self.call("/se/log", {"type": "performance"})
        events = [json.loads(entry["message"])["message"] for entry in entries]
        return [event["params"]["request"]["url"] for event in events
                if event["method"] == "Network.requestWillBeSent"]

    def close(self):
        try:
            self.call("", method="DELETE")
        finally:
            self.driver.terminate()
            self.driver.wait()


def info(browser):
    return browser.run("return document.getElementById('info').textContent")


def check_policy(text):
    for element, directive in (("script", "script-src"), ("style", "style-src")):
        content = re.search(f"<{element}>(.*?)</{element}>", text, re.S).group(1)
        digest = base64.b64encode(hashlib.sha256(content.encode()).digest()).decode()
        check(f"{directive} 'sha256-{digest}'" in text,
              f"the digest of the page's {element} is sha256-{digest}")


def check_one(browser, path):
    browser.open(path)
    browser.hover("rect[data-line*='_NS:159 ']")
    check(info(browser).startswith("+ /0/4/2/0/0 AXCheckBox _NS:159"),
          f"hovering shows {info(browser)!r}")
    browser.type("#search", "_ns:159")
    check(browser.run("return document.querySelectorAll('.found').length") == 1,
          "the search does not mark one element")
    count = browser.run("return document.getElementById('count').textContent")
    check(count.startswith("1 of "), f"the search counts {count!r}")
    results = browser.run("return document.getElementById('results').innerText")
    check("_NS:159" in results, f"the search lists {results!r}")
    colours = browser.run("""
        return ['reached', 'unreached', 'nameless'].map(each =>
            getComputedStyle(document.querySelector('rect.' + each)).stroke)""")
    check(len(set(colours)) == 3, f"reach has the colours {colours}")


def check_two(browser, path):
    browser.open(path)
    check(browser.run("return document.querySelectorAll('section').length") == 2,
          "there are not two drawings")
    boxes = browser.run("""return Array.from(document.querySelectorAll('section')).map(
        each => each.getBoundingClientRect().left)""")
    check(boxes[0] < boxes[1], "the drawings are not side by side")
    browser.hover("section:first-of-type rect[data-line*='_NS:180 ']")
    lines = info(browser).split("\n")
    check(len(lines) == 2 and "_NS:180" in lines[0] and "_NS:177" in lines[1],
          f"hovering shows {lines}")
    check(browser.run("return document.querySelectorAll('.pointed').length") == 2,
          "the element is not marked on both sides")


def check_hostile(browser, path, outside):
    browser.open(path)
    check(browser.run("return typeof window.harmed") == "undefined", "a text was executed")
    check(browser.run("return document.querySelectorAll('img, iframe, b').length") == 0,
          "a text became an element")
    check(browser.run("return document.querySelectorAll('script').length") == 1,
          "there is another script")
    browser.type("#search", "<b>")
    check(browser.run("return document.querySelectorAll('.found').length") == 1,
          "the text cannot be found as it is")
    check(browser.run("return document.querySelectorAll('#results b').length") == 0,
          "a text became an element of the results")
    # The policy holds even for what would have got into the page.
    browser.run("""
        const hole = document.createElement('div');
        hole.innerHTML = `<img src="${arguments[0]}/img" onerror="window.harmed = 1">
            <link rel="stylesheet" href="${arguments[0]}/css"><iframe src="${arguments[0]}/frame">
            </iframe>`;
        document.body.append(hole);
        const script = document.createElement('script');
        script.textContent = 'window.harmed = 1';
        document.body.append(script);""", outside)
    check(browser.run("return fetch(arguments[0]).then(() => 'came', () => 'refused')",
                      outside + "/fetch") == "refused", "the page can fetch")
    check(browser.run("return typeof window.harmed") == "undefined", "the policy has a hole")


def main():
    control, old, new, hostile = sys.argv[1:]
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Counter)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    outside = f"http://127.0.0.1:{server.server_port}"
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)

        def page(name, *files):
            text = subprocess.run([control, "view", *files], check=True, capture_output=True,
                                  text=True).stdout
            check_policy(text)
            (folder / name).write_text(text)
            return folder / name

        (folder / "hostile.json").write_text(
            pathlib.Path(hostile).read_text().replace("OUTSIDE", outside))
        browser = Browser(folder / "profile")
        try:
            check_one(browser, page("one.html", new))
            check_two(browser, page("two.html", old, new))
            check_hostile(browser, page("hostile.html", folder / "hostile.json"), outside)
            asked = [url for url in browser.requested()
                     if not url.startswith(("file:", "data:", "chrome:")) and outside not in url]
            check(not asked, f"the pages ask for {asked}")
        finally:
            browser.close()
    check(not Counter.visits, f"fetched from outside: {Counter.visits}")
    print("\n".join(PROBLEMS), end="")
    return 1 if PROBLEMS else 0


if __name__ == "__main__":
    sys.exit(main())
