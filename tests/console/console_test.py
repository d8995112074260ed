# SPDX-License-Identifier: Apache-2.0
"""What a person does with the console, done in a real browser against zorbd, the plug-in and varnelde."""

import pathlib
import sys
import unittest

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

import programs

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from npm_package import npm_package  # noqa: E402


def demo_calls():
    """The methods, in an order in which each finds what it needs, with the number that the reply tells. The page's
    examples are the demonstration's calls."""
    lines = (pathlib.Path(__file__).resolve().parents[2] / "tools" / "demo_calls.txt").read_text().splitlines()
    rows = (line.split("|") for line in lines if not line.startswith("#"))
    return {row[0].strip(): int(row[1].split()[-1]) for row in rows}


METHODS = demo_calls()


class Console:
    """The page, as a person sees it."""

    def __init__(self, browser, url):
        self.browser = browser
        browser.get(url)

    def wait(self, condition, what):
        WebDriverWait(self.browser, programs.DEADLINE, 0.02).until(lambda _: condition(), what)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.browser.execute_script(
            "return document.querySelector(arguments[0])?.textContent ?? ''", selector)

    def wait_for_text(self, selector, text):
        self.wait(lambda: text in self.text(selector), f"'{text}' in {selector}")

    def open_method(self, name):
        self.wait(lambda: self.browser.find_elements(By.CSS_SELECTOR, f"[data-method={name}]"), name)
        self.one(f"[data-method={name}]").click()
        self.wait_for_text("#method-name", name)

    def fill(self, param, text):
        field = self.one(f"#param-{param}")
        field.clear()
        field.send_keys(text)

    def call(self):
        self.one("#call").click()


class ConsoleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = programs.start_browser()
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self):
        self.started = []
        self.addCleanup(lambda: [program.stop() for program in reversed(self.started)])

    def start(self, program):
        self.started.append(program)
        return program

    def open_system(self, *options):
        """The console of a host whose plug-in is bound to a server."""
        self.server = self.start(programs.start_server())
        self.host = self.start(programs.Host("--plugin", programs.PLUGIN, *options))
        self.host.wait_for(f"is bound and offers {len(METHODS)} methods")
        return Console(self.browser, self.host.url)

    def test_all_methods_are_called_by_their_examples_and_their_lines_come(self):
        console = self.open_system()
        for method, number in METHODS.items():
            with self.subTest(method):
                console.open_method(method)
                console.call()
                console.wait_for_text("#answer-text", '"result": 0')
                console.wait_for_text("#reply", f"Reply {number}: ")
                console.wait_for_text("#lines", f"CALL RPC {method}")
        self.assertEqual(console.text("#history-count"), str(len(METHODS)))

    def test_a_wrong_address_is_told_beside_its_field(self):
        console = self.open_system()
        console.open_method("node_get_data")
        console.fill("mac_addr", "02:00:00")
        console.call()
        console.wait_for_text("#param-mac_addr-error", "is not valid")
        self.assertEqual(console.one("#param-mac_addr").get_attribute("aria-invalid"), "true")
        self.assertEqual(self.browser.switch_to.active_element.get_attribute("id"), "param-mac_addr")
        self.assertNotIn("CALL RPC node_get_data", console.text("#lines"))

    def test_a_failure_of_the_server_is_told_with_its_meaning(self):
        console = self.open_system()
        console.open_method("network_get_node_list")
        console.call()
        console.wait_for_text("#reply", "Reply -4: not_commissioned")

    def test_a_plugin_that_loses_its_server_is_told_by_the_answer(self):
        console = self.open_system()
        console.open_method("network_get_info")
        self.server.process.kill()
        self.server.process.wait()
        self.started.remove(self.server)

        def is_refused():
            console.call()
            return "Remote service not found" in console.text("#answer-text")
        console.wait(is_refused, "an answer that names the lost service")

    def test_a_plugin_that_waits_for_its_server_becomes_bound_before_ones_eyes(self):
        host = self.start(programs.Host("--plugin", programs.PLUGIN, "--discovery-timeout", "1", "--retry-pause", "0.1"))
        console = Console(self.browser, host.url)
        console.wait_for_text("#plugins", "waits for its service")
        self.start(programs.start_server())
        console.wait_for_text("#plugins", f"bound, {len(METHODS)} methods")
        console.open_method("network_get_info")

    def test_a_token_is_asked_for_until_it_is_right_and_kept_nowhere(self):
        token = programs.FOLDER / "token"
        token.write_text("a-token-of-some-length")
        token.chmod(0o600)
        console = self.open_system("--token-file", token)
        console.wait(lambda: console.one("#token-dialog").get_attribute("open"), "the question for the token")
        console.one("#token").send_keys("a-wrong-token-of-some-length" + Keys.ENTER)
        console.wait_for_text("#token-error", "does not take this token")
        console.one("#token").clear()
        console.one("#token").send_keys("a-token-of-some-length" + Keys.ENTER)
        console.wait_for_text("#connection", "live")
        console.open_method("network_get_info")
        console.call()
        console.wait_for_text("#reply", "Reply ")
        self.assertIn('--oauth2-bearer "$TOKEN"', console.text("#history code"))
        stored = self.browser.execute_script(
            "return JSON.stringify([document.cookie, {...localStorage}, {...sessionStorage}, document.body.outerHTML])")
        self.assertNotIn("a-token-of-some-length", stored)

    def open_talking(self):
        self.host = self.start(programs.Host("--plugin", programs.TALKING))
        self.host.wait_for("is bound and offers 2 methods")
        console = Console(self.browser, self.host.url)
        console.wait_for_text("#connection", "live")
        return console

    def test_ten_thousand_lines_leave_the_page_quick(self):
        console = self.open_talking()
        self.browser.execute_script("""
            window.drawings = 0;
            new MutationObserver(() => ++drawings).observe(document.querySelector("#lines"), {childList: true});""")
        self.host.call("talk", threads=1, lines=10000)
        console.one("#pause").click()
        console.wait(lambda: console.one("#pause").get_attribute("aria-pressed") == "true", "an answer to a click")
        console.one("#pause").click()
        console.wait_for_text("#lines", "says 9999 of 10000")
        console.wait_for_text("#line-count", "10000")
        shown = self.browser.execute_script("return document.querySelectorAll('#lines li').length")
        self.assertLessEqual(shown, 1000)
        # Drawing each line by itself took minutes. A frame draws all that have come.
        self.assertLess(self.browser.execute_script("return drawings"), 5000)

    def test_lines_can_be_filtered_and_held_back(self):
        console = self.open_talking()
        self.host.call("say", text="an apple")
        self.host.call("say", text="a pear")
        console.wait_for_text("#lines", "a pear")
        console.one("#line-filter").send_keys("apple")
        console.wait(lambda: "a pear" not in console.text("#lines"), "the filter")
        self.assertIn("an apple", console.text("#lines"))
        console.one("#line-filter").clear()
        console.one("#line-filter").send_keys(" ", Keys.BACKSPACE)
        console.one("#pause").click()
        self.host.call("say", text="a plum")
        console.wait_for_text("#line-count", "waiting")
        self.assertNotIn("a plum", console.text("#lines"))
        console.one("#pause").click()
        console.wait_for_text("#lines", "a plum")

    def test_what_a_plugin_writes_is_never_taken_for_markup(self):
        console = self.open_talking()
        self.host.call("say", text="<img src=x onerror='document.title=\"broken\"'>")
        console.wait_for_text("#lines", "<img src=x")
        self.assertEqual(self.browser.title, "zorbd console")

    def test_a_method_without_a_description_can_be_called(self):
        console = self.open_talking()
        console.open_method("say")
        console.call()
        console.wait_for_text("#answer-text", '"result": 0')

    def test_all_of_it_works_with_the_keyboard(self):
        console = self.open_system()
        console.open_method("network_commission")
        console.one("#param-mac_addr_list").send_keys(Keys.TAB)
        self.assertEqual(self.browser.switch_to.active_element.get_attribute("id"), "call")
        self.browser.switch_to.active_element.send_keys(Keys.ENTER)
        console.wait_for_text("#reply", "Reply 2: ")

    def test_the_page_is_accessible_and_fits_at_every_width_in_light_and_dark(self):
        axe = (npm_package(programs.BUILD, "axe-core", "4.14.1") / "axe.min.js").read_text()
        console = self.open_system()
        console.open_method("node_set_config")
        console.call()
        console.wait_for_text("#reply", "Reply ")
        self.addCleanup(programs.set_view, self.browser, 1600, 900)
        for width in (360, 800, 1600):
            for scheme in ("light", "dark"):
                with self.subTest(width=width, scheme=scheme):
                    programs.set_view(self.browser, width, 900, scheme)
                    programs.wait_for_animations(self.browser)
                    overflow = "return document.documentElement.scrollWidth - document.documentElement.clientWidth"
                    self.assertLessEqual(self.browser.execute_script(overflow), 0)
                    found = self.browser.execute_cdp_cmd("Runtime.evaluate", {
                        "expression": axe + "; axe.run().then((found) => JSON.stringify(found.violations.map((one) => "
                                            "[one.id, ...one.nodes.map((node) => node.html)])))",
                        "awaitPromise": True})
                    self.assertEqual(found["result"].get("value"), "[]")

    def test_the_page_needs_nothing_from_elsewhere_and_breaks_no_rule_of_its_own(self):
        console = self.open_system()
        console.wait_for_text("#connection", "live")
        console.wait_for_text("#plugins", "bound")
        loaded = self.browser.execute_script("return performance.getEntriesByType('resource').map((one) => one.name)")
        self.assertEqual([name for name in loaded if not name.startswith((self.host.url, "data:"))], [])
        # The log also has what became of the pages of other tests.
        own = [entry for entry in self.browser.get_log("browser") if self.host.url in entry["message"]]
        self.assertEqual(own, [])

    def test_screenshot(self):
        """Leaves one where README.md can take it from."""
        console = self.open_system()
        for method in ("network_commission", "test_node_create", "node_set_config", "node_get_data"):
            console.open_method(method)
            console.call()
            console.wait_for_text("#reply", "Reply ")
        self.addCleanup(programs.set_view, self.browser, 1600, 900)
        for width, height, scheme in ((1600, 900, "light"), (1600, 900, "dark"), (360, 1500, "light")):
            programs.set_view(self.browser, width, height, scheme)
            self.assertTrue(self.browser.save_screenshot(str(programs.BUILD / f"console-{width}-{scheme}.png")))


if __name__ == "__main__":
    unittest.main(verbosity=2)
