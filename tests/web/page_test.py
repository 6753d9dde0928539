"""The page in a browser: what people see, and what their game servers receive."""

import os
import signal
import sys
import time
import unittest

from support import ADD, PASSWORD, Host

try:
    from browser import ActionChains, Browser, Keys
    HAS_BROWSER = all(map(os.path.exists, ("/usr/bin/chromium", "/usr/bin/chromedriver")))
except ImportError:
    HAS_BROWSER = False

LIST = ["Hello", "{ShowNextMap}", "Grüße"]


def row(number, kind):
    return f"#messages li:nth-child({number}) [data-kind={kind}]"


class Page(unittest.TestCase):
    def open(self, name="Anna", width=1280, minute="300ms", **host):
        if not hasattr(self, "host"):
            self.host = Host("--minute", minute, **host)
            self.addCleanup(self.host.stop)
        page = Browser(self.host.url, width)
        self.addCleanup(page.close)
        page.sign_in(name + " ", PASSWORD)
        page.sees("#desk")
        return page

    def test_the_daily_jobs_take_few_acts_and_write_one_line_each(self):
        texts = [f"Message {i}" for i in range(1, 26)]
        page = self.open(messages=texts, more=(4, 5, 6, 9), minute="10m")
        page.lists(*texts)
        self.assertEqual(page.text("#profiles li strong"), "srv3")  # trouble stands first, without an act
        page.wait(lambda: page.driver.title == "(1 in trouble) srv2 – Rotacasts", "the trouble in the title")

        def job(acts, lines, *wanted):
            page.lists(*wanted)
            self.assertEqual((self.host.messages(), page.acts, len(self.host.log()) - logged), (list(wanted), acts, lines))
            page.acts = 0
            return logged + lines

        logged = 0
        page.click(row(3, "text"))
        page.keys(Keys.BACKSPACE + "drei")
        page.keys(Keys.ENTER)
        changed = texts[:2] + ["Message drei"] + texts[3:]
        logged = job(3, 1, *changed)
        page.click(row(25, "place"))
        page.click("#messages [data-kind=top]")
        moved = changed[-1:] + changed[:-1]
        logged = job(2, 1, *moved)
        page.keys(Keys.END)  # on the number, which has kept the focus
        logged = job(1, 1, *changed)
        page.js("scrollTo(0, 1e6)")
        page.drag(row(25, "place"), row(21, "place"))
        logged = job(2, 1, *changed[:20], changed[-1], *changed[20:-1])
        for wanted in (changed, moved, changed, texts):  # several steps back
            page.keys(Keys.CONTROL + "z")
            logged = job(1, 1, *wanted)
        ten = [f"Pasted {i}" for i in range(10)]
        page.click("#all-servers")
        page.paste("\n".join(ten) + "\n\n")
        page.keys(Keys.ENTER)
        page.sees("#outcomes", "Added: all 6 did")
        logged = job(3, 10, *texts, *ten)
        self.assertEqual(self.host.messages(3), ["Three", *ten])  # whose server is unreachable
        page.click("#one-server")
        page.acts = 0
        page.click("#all-servers")
        page.keys("Maintenance")
        page.click("#say")
        for _ in range(3):
            self.assertTrue(self.host.server.prints("Maintenance", 5))
        page.sees("#outcome [data-index='6']", "Sent: Maintenance (warn said: slow)")
        page.sees("#outcome li:first-child.failed", "srv9 Not sent: ")  # once that is known
        page.sees("#outcomes-title", "Said once: 5 did, 1 did not")
        self.assertEqual(page.acts, 3)
        page.sees("#profiles li", "srv9")  # stands first, because its texts fail
        page.wait(lambda: page.driver.title == "(2 in trouble) srv2 – Rotacasts", "both in the title")
        page.click("#copy")
        page.sees("#outcomes", "Copied from srv2: all 5 did")
        self.assertEqual(self.host.messages(5), ["List 5", *ten, *texts])
        page.keys(Keys.CONTROL + "z")
        page.sees("#outcomes", "Undone: copied the list of srv2: all 5 did", 60)
        self.assertEqual([self.host.messages(index) for index in (3, 5)], [["Three", *ten], ["List 5", *ten]])

    def test_no_press_is_done_twice_or_to_another_message(self):
        page, other = self.open(messages=["One", "Two", "Three", "Four", "Five"]), self.open()
        page.lists("One", "Two", "Three", "Four", "Five")
        ActionChains(page.driver).move_to_element(page.find(row(2, "delete"))).click().perform()
        page.lists("One", "Three", "Four", "Five")
        ActionChains(page.driver).click().perform()  # where the button of "Three" is now
        page.sees("#toast", "Nothing was done")
        time.sleep(1)
        ActionChains(page.driver).move_to_element(page.find(row(2, "up"))).click().perform()
        page.lists("Three", "One", "Four", "Five")
        ActionChains(page.driver).click().perform()
        time.sleep(1)
        self.assertEqual(page.messages(), ["Three", "One", "Four", "Five"])
        page.js(f"document.querySelector('{row(3, 'delete')}').focus()")
        other.row(0, "delete")
        page.lists("One", "Four", "Five")
        page.keys(Keys.SPACE)  # the focus has followed "Four"
        page.lists("One", "Five")
        page.js("const real = fetch; window.fetch = async (...request) => {"
                " await new Promise((go) => setTimeout(go, 800)); return real(...request); }")
        page.type("#text", "Once" + Keys.ENTER + Keys.ENTER)
        page.find("#text").send_keys(" and more")
        page.sees("#toast", "Under way")
        page.lists("One", "Five", "Once")
        for index, draft in ((3, ""), (2, "Once and more")):  # each server has its own
            page.click(f"#profiles [data-index='{index}'] a")
            page.sees("#profile-name", f"srv{index}")
            self.assertEqual(page.js("return document.querySelector('#text').value"), draft)
        self.assertEqual(self.host.messages(), ["One", "Five", "Once"])
        page.js("document.querySelector('.skip').focus()")
        page.keys(Keys.ENTER)
        self.assertEqual(page.js("return [location.hash, document.activeElement.id]"), ["#/2", "main"])
        page.js("document.querySelector('#interval').focus()")
        for _ in range(4):
            page.keys(Keys.ARROW_UP)
        page.sees("#toast", "A message every 5 min")
        self.assertEqual(sum("Interval" in line for line in self.host.log()), 1)
        page.js("AbortSignal.timeout = ((real) => () => real(1000))(AbortSignal.timeout)")
        os.kill(self.host.program.id, signal.SIGSTOP)  # the line is dead, but not broken
        page.row(0, "delete")
        page.sees("#toast.bad", "has not answered for 10 seconds")
        os.kill(self.host.program.id, signal.SIGCONT)

    def test_the_tabs_of_a_browser_share_one_stream_and_a_hidden_one_has_none(self):
        page = self.open()
        for _ in range(7):  # a browser has six connections to a host
            page.driver.switch_to.new_window("window")
            page.driver.get(self.host.url + "#/2")
            page.lists(*LIST)
        hide = ("Object.defineProperty(document, 'hidden', {configurable: true, value: arguments[0]});"
                "document.dispatchEvent(new Event('visibilitychange'))")
        page.js(hide, True)
        page.driver.switch_to.window(page.driver.window_handles[0])
        page.row(0, "delete")
        page.driver.switch_to.window(page.driver.window_handles[1])
        page.lists(*LIST[1:])
        page.driver.switch_to.window(page.driver.window_handles[-1])
        self.assertEqual(page.messages(), LIST)
        page.js(hide, False)
        page.lists(*LIST[1:])

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
        page.sees("#log", f"Add Rotacast (Message: {markup}) from Anna")
        page.type("#interval", "45\t")
        page.sees("#toast.bad", "from 0 to 30")
        page.type("#interval", "7\t")
        page.sees("#toast", "every 7 min")
        page.find("#switch").click()
        page.sees("#next", "Nothing is sent while this is switched off.")
        page.sees("#profiles", "switched off")
        logs = f"{self.host.folder}/profiles/srv2/adminlogs"
        os.rename(logs, logs + " of old")
        open(logs, "w").close()  # so that nothing can be logged
        page.row(3, "delete")
        page.sees("#toast", f"Deleted: {markup} – but ")
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
        self.host.admin("set", "Eve", "--rights", ADD)  # reaches the open page
        eve.sees("#compose")
        eve.sees("#messages .row-actions")
        self.assertFalse(eve.find("#switch").is_enabled())
        ben.sees("#profile-problem", "no-such-program")
        ben.sees("#no-settings")
        self.assertFalse(ben.find("#switch").is_enabled())
        self.assertEqual(ben.text("#profiles").split("\n")[0], "srv3")
        self.host.admin("set", "Ben", "--profiles", "")
        ben.sees("#no-profiles", "no game server here")
        self.host.admin("set", "Ben", password="another horse")
        ben.sees("#sign-in-note", "Your session has ended")

    def test_a_lost_connection_comes_back_and_a_lost_session_says_so(self):
        page = self.open()
        page.lists(*LIST)
        cookie = self.host.sign_in("Anna")[1]
        for line, _ in [self.host.follow(cookie) for _ in range(16)]:  # as many as one person may follow
            self.addCleanup(line.close)
        page.sees("#banner", "open too often")
        page.keys(Keys.SHIFT)
        page.wait(lambda: not page.text("#banner"), "the page to follow again")
        page.driver.set_network_conditions(offline=True, latency=0, throughput=-1)
        page.sees("#banner", "connection to the host is lost")
        page.sees("#profile-state", "not known")
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
        page = self.open(width=390, messages=["x" * 200, "W" * 60, "", "{ShowNextMapp}", "Next: {ShowNextMap}"])
        page.sees("#profiles", "srv3")
        self.assertFalse(page.find("#profile").is_displayed())
        keys = lambda *names: page.find(":focus").send_keys(*names)
        page.js("document.querySelector('#profiles [data-index=\"2\"] a').focus()")
        keys(Keys.ENTER)
        page.sees("#profile-name", "srv2")
        self.assertEqual(page.js("return document.activeElement.id"), "profile-name")
        for words in ("empty, so it is skipped", "“{ShowNextMapp}” is no live text", "only as the whole message"):
            page.sees("#messages", words)
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
        page.drag_by_touch(row(5, "place"), row(4, "place"))
        page.wait(lambda: page.messages()[3:] == ["By keyboard", "Next: {ShowNextMap}"], "the message that was dragged")


if __name__ == "__main__":
    if not HAS_BROWSER:
        print("NOT TESTED: the page, for want of Debian's chromium, chromium-driver and "
              "python3-selenium (scripts/bootstrap browser installs them)", file=sys.stderr)
        sys.exit(1 if os.environ.get("CI") else 77)
    unittest.main()
