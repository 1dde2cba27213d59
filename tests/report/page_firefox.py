"""Drives firefox-esr by Marionette, its own remote control: JSON over a socket."""

import json
import os
import socket
import subprocess
import tempfile
import time

PREFERENCES = {"marionette.port": 0, "network.proxy.type": 1, "network.proxy.socks": "127.0.0.1",
               "network.proxy.socks_port": 9, "app.update.enabled": False,
               "datareporting.policy.dataSubmissionEnabled": False,
               "browser.shell.checkDefaultBrowser": False}


class Firefox:
    """A headless Firefox with a profile of its own. Use in a with statement."""

    def __enter__(self):
        self._profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        with open(os.path.join(self._profile.name, "user.js"), "w", encoding="ascii") as file:
            for name, value in PREFERENCES.items():
                file.write(f"user_pref({json.dumps(name)}, {json.dumps(value)});\n")
        self._process = subprocess.Popen(
            ["firefox-esr", "--headless", "--no-remote", "--marionette",
             "--profile", self._profile.name],
            env={**os.environ, "HOME": self._profile.name}, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        self._socket = socket.create_connection(("127.0.0.1", self._port()), timeout=60)
        self._count = 0
        self._receive()  # its greeting
        self.command("WebDriver:NewSession", {"capabilities": {"alwaysMatch": {}}})
        return self

    def __exit__(self, *_):
        self._socket.close()
        self._process.terminate()
        self._process.wait()
        self._profile.cleanup()

    def _port(self):
        """The port that it has chosen; it writes it into its profile."""
        path = os.path.join(self._profile.name, "MarionetteActivePort")
        for _ in range(600):
            if os.path.exists(path):
                with open(path, encoding="ascii") as file:
                    text = file.read()
                if text:
                    return int(text)
            time.sleep(0.1)
        raise AssertionError("Firefox does not start")

    def _receive(self):
        """A message is its length in decimal, a colon, and JSON."""
        size = b""
        while (byte := self._socket.recv(1)) != b":":
            size += byte
        content = b""
        while len(content) < int(size):
            content += self._socket.recv(int(size) - len(content))
        return json.loads(content)

    def command(self, name, parameters):
        self._count += 1
        message = json.dumps([0, self._count, name, parameters])
        self._socket.sendall(f"{len(message)}:{message}".encode())
        _, _, fault, result = self._receive()
        if fault:
            raise AssertionError(fault)
        return result

    def open(self, address):
        self.command("WebDriver:Navigate", {"url": address})

    def run(self, script, *arguments):
        """The value of an asynchronous script; its last argument takes it."""
        return self.command("WebDriver:ExecuteAsyncScript",
                            {"script": script, "args": list(arguments)})["value"]
