"""The page in a browser: what people see, and what their game servers receive."""

import os
import sys
import unittest

from support import PASSWORD, Host

try:
    from browser import Browser, Keys
    HAS_BROWSER = all(map(os.path.exists, ("/usr/bin/chromium", "/usr/bin/chromedriver")))
except ImportError:
    HAS_BROWSER = False

LIST = ["Hello", "{ShowNextMap}", "Grüße"]


class Page(unittest.TestCase):
    def open(self, name="Anna", width=1280, **host):
        if not hasattr(self, "host"):
            self.host = Host("--minute", "300ms", **host)
            self.addCleanup(self.host.stop)
        page = Browser(self.host.url, width)
        self.addCleanup(page.close)
        page.sign_in(name, PASSWORD)
        page.sees("#desk")
        return page

    def test_a_person_changes_the_list_and_players_read_it(self):
        page = self.open()
        page.sees("#profile-name", "srv2")
        page.lists(*LIST)
        page.sees("#messages li:nth-child(2) .says", "now: [Next Map] ")
        page.sees("#sent", "Hello")
        page.type("#text", "{ShowMostKills}")
        page.sees("#hint", "Players read now: [Most Kills] ")
        page.find("#say").click()
        self.assertTrue(self.host.server.prints("[Most Kills] "))
        page.type("#text", "Ж")
        page.sees("#hint", "“Ж” is no letter")
        self.assertFalse(page.find("#add").is_enabled())
        markup = "<img src=x onerror=alert(1)> <b>Zoë</b>"
        page.type("#text", markup)
        page.sees("#count", "39 letters")
        page.find("#add").click()
        page.lists(*LIST, markup)
        self.assertTrue(self.host.server.prints(markup))
        self.assertEqual(page.js("return document.querySelectorAll('#messages img, #messages b').length"), 0)
        page.row(3, "up")
        page.lists("Hello", "{ShowNextMap}", markup, "Grüße")
        self.assertIn("Move up", page.js("return document.activeElement.title"))
        page.row(0, "delete")
        page.lists("{ShowNextMap}", markup, "Grüße")
        page.sees("#toast", "Deleted: Hello")
        page.find("#undo").click()
        page.lists("Hello", "{ShowNextMap}", markup, "Grüße")
        page.sees("#log", "Add Rotacast (Message: Hello) from Anna")
        page.type("#interval", "45\t")
        page.sees("#toast.bad", "from 0 to 30")
        page.type("#interval", "7\t")
        page.sees("#toast", "every 7 min")
        page.find("#switch").click()
        page.sees("#next", "Nothing is sent while this is switched off.")
        page.sees("#profiles", "switched off")
        severe = [line for line in page.driver.get_log("browser") if "status of 401" not in line["message"]]
        self.assertEqual(severe, [])

    def test_two_people_do_not_undo_each_other_and_rights_are_kept(self):
        page, other = self.open(), self.open()
        for one in (page, other):
            one.lists(*LIST)
        # Delays the other's request until the list has changed.
        other.js("const real = fetch; window.fetch = (...request) => new Promise((go) => {"
                 " window.letGo = () => { window.fetch = real; go(real(...request)); }; })")
        other.row(0, "delete")
        page.row(0, "delete")
        page.lists(*LIST[1:])
        other.js("letGo()")
        other.sees("#toast.bad", "The list has changed meanwhile")
        for one in (page, other):
            one.lists(*LIST[1:])
        self.assertEqual(len(self.host.log()), 1)
        eve, ben = self.open("Eve"), self.open("Ben")
        eve.lists(*LIST[1:])
        eve.sees("#no-changes")
        self.assertFalse(eve.find("#compose").is_displayed() or eve.text("#messages .row-actions"))
        self.assertTrue(eve.find("#switch").is_enabled())
        ben.sees("#profile-problem", "no-such-program")
        ben.sees("#no-settings")
        self.assertFalse(ben.find("#switch").is_enabled())
        self.assertEqual(ben.text("#profiles").split("\n")[0], "srv3")
        self.host.admin("set", "Ben", "--profiles", "")
        ben.wait(lambda: not ben.text("#profiles"), "the loss of the profile")
        ben.driver.refresh()
        ben.sees("#no-profiles", "no game server here")

    def test_a_lost_connection_comes_back_and_a_lost_session_says_so(self):
        page = self.open()
        page.lists(*LIST)
        page.driver.set_network_conditions(offline=True, latency=0, throughput=-1)
        page.sees("#banner", "connection to the host is lost")
        page.find("#messages [data-kind=down]").click()
        page.sees("#toast.bad", "does not answer")
        page.driver.delete_network_conditions()
        page.wait(lambda: not page.text("#banner"), "the connection")
        page.lists(*LIST)
        self.assertEqual(self.host.end(), 0)
        page.sees("#banner", "connection to the host is lost")
        self.host.start()
        page.sees("#sign-in-note", "the host was started again")
        page.sign_in("Anna", PASSWORD)
        page.sees("#desk")
        page.lists(*LIST)
        page.find("#sign-out").click()
        page.sees("#sign-in-note", "You have signed out.")

    def test_a_phone_and_a_keyboard_suffice(self):
        page = self.open(width=390, messages=["x" * 200, "W" * 60, ""])
        page.sees("#profiles", "srv3")
        self.assertFalse(page.find("#profile").is_displayed())
        keys = lambda *names: page.find(":focus").send_keys(*names)
        page.js("document.querySelector('#profiles a').focus()")
        keys(Keys.ENTER)
        page.sees("#profile-name", "srv2")
        self.assertEqual(page.js("return document.activeElement.id"), "profile-name")
        page.sees("#messages", "empty, so it is skipped")
        self.assertLessEqual(page.js("return document.documentElement.scrollWidth"), 390)
        self.assertEqual(page.js("return [...document.querySelectorAll('button, input, select, a:not(.skip)')].filter("
                                 "e => e.checkVisibility() && (e.closest('label') ?? e).getBoundingClientRect().height < 44).map(e => e.id)"), [])
        unnamed = page.js("return [...document.querySelectorAll('button, input, select')].filter(e => "
                          "!e.getAttribute('aria-label') && !e.labels?.length && !e.innerText).map(e => e.id)")
        self.assertEqual(unnamed, [])
        for _ in range(20):
            keys(Keys.TAB)
            if page.js("return document.activeElement.id") == "text":
                break
        keys("By keyboard", Keys.ENTER)
        page.wait(lambda: "By keyboard" in page.messages(), "the message")
        page.js("document.querySelector('#messages li:last-child [data-kind=delete]').focus()")
        keys(Keys.SPACE)
        page.sees("#toast", "Deleted: By keyboard")
        self.assertEqual(page.js("return document.activeElement.dataset.kind"), "delete")
        keys(Keys.CONTROL + "z")
        page.wait(lambda: "By keyboard" in page.messages(), "the message that was put back")


if __name__ == "__main__":
    if not HAS_BROWSER:
        print("NOT TESTED: the page, for want of Debian's chromium, chromium-driver and "
              "python3-selenium (scripts/bootstrap browser installs them)", file=sys.stderr)
        sys.exit(1 if os.environ.get("CI") else 77)
    unittest.main()
