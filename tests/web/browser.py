"""A headless Chromium with the page, driven like a user drives it."""

import os
import shutil
import tempfile
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

FLAGS = ("--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-sync "
         "--disable-background-networking --disable-component-update --disable-dev-shm-usage "
         "--hide-scrollbars")


class Browser:
    def __init__(self, url, width=1280):
        self.profile = tempfile.mkdtemp(prefix="rotacasts-browser-")
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for flag in [*FLAGS.split(), f"--user-data-dir={self.profile}"]:
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 600})
        self.driver.get(url)

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.profile, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def wait(self, condition, what, seconds=10):
        WebDriverWait(self.driver, seconds, 0.05).until(lambda _: condition(), f"waited for {what}")

    def js(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def text(self, selector):
        return self.js("return document.querySelector(arguments[0])?.innerText", selector) or ""

    def sees(self, selector, text="", seconds=10):
        seen = "const e = document.querySelector(arguments[0]); return !!e?.checkVisibility() && e.innerText.includes(arguments[1])"
        self.wait(lambda: self.js(seen, selector, text),
                  f"{text!r} in {selector}, which is {self.text(selector)!r}", seconds)

    def type(self, selector, text):
        field = self.find(selector)
        field.send_keys(Keys.CONTROL + "a")
        field.send_keys(text)

    # Acts, counted as a person counts them: a click, a key or a text that is typed or pasted.
    acts = 0

    def click(self, selector):
        time.sleep(0.8)  # as long as it takes to see where everything is now
        self.acts += 1
        self.js("arguments[0].scrollIntoView({block: 'center'})", self.find(selector))
        self.find(selector).click()

    def keys(self, *keys):
        self.acts += 1
        self.driver.switch_to.active_element.send_keys(*keys)

    def paste(self, text):
        self.acts += 1
        self.js("document.execCommand('insertText', false, arguments[0])", text)

    def drag(self, selector, to):
        self.acts += 2  # take and let go
        move = ActionChains(self.driver).click_and_hold(self.find(selector))
        move.move_to_element(self.find(to)).move_by_offset(0, -15).release().perform()

    def drag_by_touch(self, selector, to):
        """Drags with a finger to a little above the middle of another element."""
        self.js("arguments[0].scrollIntoView({block: 'center'})", self.find(to))
        (x, y), (_, end) = ([box["x"] + box["width"] / 2, box["y"] + box["height"] / 2] for box in (
            self.js("return document.querySelector(arguments[0]).getBoundingClientRect()", one) for one in (selector, to)))
        for kind, at in (("touchStart", y), ("touchMove", (y + end) / 2), ("touchMove", end - 15), ("touchEnd", None)):
            points = [] if at is None else [{"x": x, "y": at}]
            self.driver.execute_cdp_cmd("Input.dispatchTouchEvent", {"type": kind, "touchPoints": points})

    def sign_in(self, name, password):
        self.sees("#sign-in")
        self.type("#person", name)
        self.type("#password", password)
        self.find("#sign-in button").click()

    def messages(self):
        return self.js("return [...document.querySelectorAll('#messages .text')].map(t => t.firstChild.textContent)")

    def row(self, position, kind):
        self.click(f"#messages li:nth-child({position + 1}) [data-kind={kind}]")

    def lists(self, *messages):
        self.wait(lambda: self.messages() == list(messages), f"{messages}, not {self.messages()}")

    def picture(self, file):
        self.driver.save_screenshot(file)
