"""An update server of a test's own, on a free port of 127.0.0.1. Usage: update_server.py DIRECTORY

The directory has the file "answer"; the server writes its port to "port" there, and a line for every request to
"requests": the address, the user agent and what is accepted, with tabs between them.
"""

import http.server
import os
import sys
import threading

directory = sys.argv[1]


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"  # wget does not ask one of 1.0 again where it is redirected

    def do_GET(self):
        self.note()
        path = self.path.split("?")[0].strip("/").split("/")
        getattr(self, path[0])(*path[1:])

    def note(self):
        parts = [self.path, self.headers.get("User-Agent", ""), self.headers.get("Accept", "")]
        with open(os.path.join(directory, "requests"), "a") as log:
            log.write("\t".join(parts) + "\n")

    def send(self, status, body, headers=()):
        self.send_response(status)
        self.send_header("Content-Length", str(len(body)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)

    def answer(self):
        with open(os.path.join(directory, "answer"), "rb") as file:
            self.send(200, file.read())

    def status(self, status):
        with open(os.path.join(directory, "answer"), "rb") as file:
            self.send(int(status), file.read())

    def redirect(self, times):
        left = int(times) - 1
        self.send(302, b"", [("Location", f"/redirect/{left}" if left else "/answer")])

    def cut(self):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b'{"latest":{"version":"9.9.9"}}')
        self.close_connection = True

    def never(self):
        threading.Event().wait()

    def log_message(self, *arguments):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
server.handle_error = lambda *request: None  # who asks may go away at any time
with open(os.path.join(directory, "port.part"), "w") as file:
    file.write(str(server.server_port))
os.rename(file.name, os.path.join(directory, "port"))
server.serve_forever()
