#!/usr/bin/env python3
# SPDX-License-Identifier: AGPL-3.0-or-later
"""An HTTPS server that answers POST requests as a test tells it to.

    https_server.py CERTIFICATE KEY ANSWER...

Prints its port, then one JSON object per request. The answers are given in turn, the last one again and again:
a status; "hang" (no answer until the client goes); "cut" (the connection is closed without one); "half" (it is
closed within one); "endless" (a body that never ends).
"""

import base64
import http.server
import json
import ssl
import sys
import threading

certificate, key, *answers = sys.argv[1:]
lock = threading.Lock()


def next_answer():
    return answers.pop(0) if len(answers) > 1 else answers[0]


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        with lock:
            answer = next_answer()
            print(json.dumps({
                "method": self.command,
                "path": self.path,
                "headers": self.headers.items(),
                "body": base64.b64encode(body).decode(),
                "answer": answer,
            }), flush=True)
        if answer == "hang":
            self.rfile.read(1)
            self.close_connection = True
        elif answer == "cut":
            self.close_connection = True
        elif answer == "half":
            self.wfile.write(b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf")
            self.close_connection = True
        elif answer == "endless":
            self.wfile.write(b"HTTP/1.1 200 OK\r\n\r\n")
            while True:
                self.wfile.write(b"x" * 65536)
        else:
            self.answer(int(answer))

    do_GET = do_POST

    def answer(self, status):
        self.send_response(status)
        self.send_header("Set-Cookie", "visitor=known; Max-Age=1000000; Path=/")
        if 300 <= status < 400:
            self.send_header("Location", "/elsewhere")
        if status != 204:
            self.send_header("Content-Length", "2")
        self.end_headers()
        if status != 204:
            self.wfile.write(b"{}")

    def log_message(self, *arguments):
        pass


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        pass  # A client that goes away or refuses the certificate is part of the test.


server = Server(("127.0.0.1", 0), Handler)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(certificate, key)
server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
print(server.server_address[1], flush=True)
server.serve_forever()
