"""Debian's chromium for the tests of the report page: headless, from file://, without a network.

One browser serves all tests. open() loads a page anew and starts the watch on what it asks for and
what it prints to the console; requests() and console() tell what was seen since.
"""

import atexit
import base64
import io
import json
import os
import re
import subprocess
import tempfile
import urllib.parse

import numpy
from PIL import Image
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By

WIDTH, HEIGHT = 1400, 1000
# Runs in the page: pulls what a hook gives through a promise, and waits for the next picture.
AFTER_PAINT = "const done = arguments[arguments.length - 1];" \
              "requestAnimationFrame(() => requestAnimationFrame(() => done(true)));"
SHOW = "const [name, base, done] = arguments;" \
       "window.quillet.show(name, base ?? undefined)" \
       ".then(() => done(''), (fault) => done(String(fault)));"


def address_of(page, fragment=None):
    return "file://" + urllib.parse.quote(page) + ("" if fragment is None else "#" + fragment)


class Picture:
    """What the window shows: RGB of each CSS pixel."""

    def __init__(self, png):
        self.pixels = numpy.asarray(Image.open(io.BytesIO(png)).convert("RGB")).astype(int)

    def at(self, x, y):
        return tuple(self.pixels[int(round(y)), int(round(x))])

    def box(self, left, top, right, bottom):
        """The pixels from left to right and top to bottom, all included."""
        return self.pixels[int(top):int(bottom) + 1, int(left):int(right) + 1]


def nearness(pixels, colour):
    """How far each pixel is from a colour, 0 to 441."""
    return numpy.sqrt(((pixels - numpy.array(colour)) ** 2).sum(axis=-1))


class Browser:
    def __init__(self):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--disable-background-networking", "--disable-component-update",
                     "--disable-sync", "--no-first-run", "--force-device-scale-factor=1",
                     "--hide-scrollbars", "--lang=en-US",
                     "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE localhost",
                     f"--window-size={WIDTH},{HEIGHT}"):
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        service = Service("/usr/bin/chromedriver", log_path=os.devnull)
        self.driver = webdriver.Chrome(options=options, service=service)
        self.driver.set_script_timeout(30)
        self.page = None
        self.size(WIDTH, HEIGHT)

    def quit(self):
        self.driver.quit()

    def cdp(self, command, **arguments):
        return self.driver.execute_cdp_cmd(command, arguments)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    # The surroundings of the page

    def size(self, width, height):
        self.cdp("Emulation.setDeviceMetricsOverride", width=width, height=height,
                 deviceScaleFactor=1, mobile=False)

    def theme(self, name):
        """"light" or "dark"."""
        self.cdp("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": name}])

    def scripts(self, are_on):
        self.cdp("Emulation.setScriptExecutionDisabled", value=not are_on)

    def policy(self, is_on):
        self.cdp("Page.setBypassCSP", enabled=not is_on)

    # Loading

    def open(self, page, fragment=None, is_running=True):
        """Loads a page; with scripts it is there when its first trace is shown."""
        self.driver.get("about:blank")
        self.driver.get_log("browser")
        self.driver.get_log("performance")
        self.page = page
        self.driver.get(address_of(page, fragment))
        if is_running:
            self.wait_for("return window.quillet !== undefined"
                          " && (window.quillet.order().length === 0 || "
                          "document.querySelector('[data-panel=trace]').dataset.shown)")
            self.after_paint()

    def wait_for(self, condition, *arguments, seconds=15):
        """Waits until a script gives true."""
        script = "const done = arguments[arguments.length - 1], given = [...arguments];" \
                 f"const holds = function () {{ {condition} }};" \
                 f"const end = performance.now() + {seconds * 1000};" \
                 "const look = () => { if (holds(...given)) done(true);" \
                 "else if (performance.now() > end) done(false); else setTimeout(look, 10); };" \
                 "look();"
        if not self.driver.execute_async_script(script, *arguments):
            raise AssertionError(f"not within {seconds} s: {condition} {arguments}")

    def after_paint(self):
        self.driver.execute_async_script(AFTER_PAINT)

    # What the page did

    def console(self):
        """Texts on the console, errors and refusals of the policy included, since the last call."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self, refused=None):
        """What was asked for since open(), except the page itself. Into `refused`, a list, goes
        what the page's policy stopped; without it, that counts as asked for."""
        asked = {}
        for entry in self.driver.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            about = message["params"]
            if message["method"] == "Network.requestWillBeSent":
                asked[about["requestId"]] = about["request"]["url"]
            elif message["method"] in ("Network.webSocketCreated", "Network.webTransportCreated"):
                asked[about["url"]] = about["url"]
            elif message["method"] == "Network.loadingFailed" and refused is not None \
                    and about.get("blockedReason") == "csp":
                refused.append(asked.pop(about["requestId"]))
        return [url for url in asked.values()
                if url.split("#")[0] not in (address_of(self.page), "about:blank")]

    # The hooks

    def show(self, name, base=None):
        fault = self.driver.execute_async_script(SHOW, name, base)
        if fault:
            raise AssertionError(fault)
        self.after_paint()

    def order(self):
        return self.run("return window.quillet.order()")

    def pixel_of(self, base, channel):
        return self.run("return window.quillet.pixelOf(...arguments)", base, channel)

    def pixels_of(self, *places):
        """pixel_of() for each (base, channel)."""
        return self.run("return arguments[0].map((place) => window.quillet.pixelOf(...place))",
                        places)

    def well_of(self, sample):
        return self.run("return window.quillet.wellOf(arguments[0])", sample)

    def shown(self):
        return self.run("return document.querySelector('[data-panel=trace]').dataset.shown ?? null")

    def wait_for_shown(self, sample):
        self.wait_for("return arguments[0] === "
                      "document.querySelector('[data-panel=trace]').dataset.shown", sample)
        self.after_paint()

    def fragment(self):
        """What follows "#" in the address, as soon as it stays the same for half a second."""
        script = "const done = arguments[0]; let last = location.hash, since = performance.now();" \
                 "const look = () => { if (location.hash !== last) {" \
                 "last = location.hash; since = performance.now(); }" \
                 "if (performance.now() - since > 500) done(last);" \
                 "else setTimeout(look, 20); }; look();"
        return self.driver.execute_async_script(script)

    # What a person does

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def find_all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()
        self.after_paint()

    def click_at(self, x, y):
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.cdp("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left",
                     buttons=1 if kind == "mousePressed" else 0, clickCount=1)
        self.after_paint()

    def drag(self, x, y, to_x, to_y):
        for kind, at_x, at_y in (("mouseMoved", x, y), ("mousePressed", x, y),
                                 ("mouseMoved", (x + to_x) / 2, (y + to_y) / 2),
                                 ("mouseMoved", to_x, to_y), ("mouseReleased", to_x, to_y)):
            self.cdp("Input.dispatchMouseEvent", type=kind, x=at_x, y=at_y, button="left",
                     buttons=0 if kind == "mouseReleased" else 1, clickCount=1)
        self.after_paint()

    def wheel(self, x, y, delta_x, delta_y):
        self.cdp("Input.dispatchMouseEvent", type="mouseWheel", x=x, y=y, deltaX=delta_x,
                 deltaY=delta_y)
        self.after_paint()

    def move_to(self, x, y):
        self.cdp("Input.dispatchMouseEvent", type="mouseMoved", x=x, y=y)
        self.after_paint()

    def filter(self, text):
        """Types a text into the field in the place of what stands there."""
        field = self.find("input[type=search]")
        field.clear()
        field.send_keys(text if text else "x\b")
        self.after_paint()

    # What a person sees

    def picture(self):
        return Picture(base64.b64decode(self.cdp(
            "Page.captureScreenshot", format="png", optimizeForSpeed=True)["data"]))

    def colour(self, name):
        """RGB of a custom property of the root."""
        text = self.run("const probe = document.createElement('canvas').getContext('2d');"
                        "probe.fillStyle = getComputedStyle(document.documentElement)"
                        ".getPropertyValue(arguments[0]).trim(); return probe.fillStyle;", name)
        match = re.fullmatch("#(..)(..)(..)", text)
        return tuple(int(part, 16) for part in match.groups())

    def text(self, selector):
        return self.find(selector).text

    def pdf(self):
        """Prints the page; the path of the PDF."""
        printed = self.cdp("Page.printToPDF", preferCSSPageSize=True, printBackground=False)["data"]
        file = tempfile.NamedTemporaryFile(suffix=".pdf", delete=False)
        with file:
            file.write(base64.b64decode(printed))
        atexit.register(os.remove, file.name)
        return file.name


_browser = None


def chromium():
    """The browser of all tests, in its plain state."""
    global _browser
    if _browser is None:
        _browser = Browser()
        atexit.register(_browser.quit)
    _browser.scripts(True)
    _browser.policy(True)
    _browser.theme("light")
    _browser.size(WIDTH, HEIGHT)
    return _browser


def pdf_text(pdf):
    done = subprocess.run(["pdftotext", "-layout", pdf, "-"], stdout=subprocess.PIPE, check=True)
    return done.stdout.decode("utf-8")
