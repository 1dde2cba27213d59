"""Takes the pictures of a page: take_screenshots.py PAGE FOLDER. Used by tools/screenshots.

Each view is taken at 1400 x 1000 and at 1366 x 768. Ends with status 1 when the page writes anything
to the browser's console.
"""

import os
import sys

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

SIZES = ((1400, 1000), (1366, 768))
DIFFERS = "P01_C05_COI_F"
SECOND_TEMPLATE = "P01_G03_COI_F"
FAILED = "P01_D07_COI_F"


def start():
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--disable-gpu", "--force-device-scale-factor=1"):
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")  # Chromium has none for root
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def open_page(driver, page, size, scheme="light"):
    """The page at its start, in a window of this size, drawn."""
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": size[0], "height": size[1], "deviceScaleFactor": 1, "mobile": False})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": scheme}]})
    driver.get("about:blank")
    driver.get("file://" + os.path.abspath(page))
    WebDriverWait(driver, 30).until(lambda _: driver.execute_script(
        "return document.querySelector('[data-panel=trace]').dataset.shown !== undefined"))


def show(driver, sample, base=None):
    driver.execute_async_script(
        "const [sample, base, done] = arguments; quillet.show(sample, base).then(() => done())",
        sample, base)


def point_at(driver, base, channel):
    """Moves the pointer over the base, so that the readout line says what stands there."""
    at = driver.execute_script("return quillet.pixelOf(arguments[0], arguments[1])", base, channel)
    driver.execute_cdp_cmd("Input.dispatchMouseEvent", {
        "type": "mouseMoved", "x": round(at["x"]), "y": round(at["baseline"]) - 40})


def press(driver, text):
    for button in driver.find_elements(By.TAG_NAME, "button"):
        if button.text == text and button.is_displayed():
            return button.click()
    raise LookupError(f"there is no button {text}")


def project(driver, page, size):
    open_page(driver, page, size)


def trace(driver, page, size):
    open_page(driver, page, size)
    show(driver, DIFFERS, 300)
    point_at(driver, 300, "A")


def mixed(driver, page, size):
    open_page(driver, page, size)
    show(driver, SECOND_TEMPLATE, 384)
    point_at(driver, 384, "A")


def capillaries(driver, page, size):
    open_page(driver, page, size)
    press(driver, "Capillaries")
    show(driver, FAILED)


def dark(driver, page, size):
    open_page(driver, page, size, "dark")
    show(driver, SECOND_TEMPLATE, 384)


def main():
    page, folder = sys.argv[1:]
    driver = start()
    try:
        for view in (project, trace, mixed, capillaries, dark):
            for size in SIZES:
                view(driver, page, size)
                # The page paints in the next frame.
                driver.execute_async_script(
                    "const done = arguments[0];"
                    "requestAnimationFrame(() => requestAnimationFrame(() => done()))")
                driver.save_screenshot(f"{folder}/{view.__name__}-{size[0]}x{size[1]}.png")
        said = [entry["message"] for entry in driver.get_log("browser")]
    finally:
        driver.quit()
    if said:
        sys.exit("the page wrote to the console:\n" + "\n".join(said))


main()
