#!/usr/bin/env python3
"""Reads the text of the page shown in the viewer through the engine's remote debugging
port (QTWEBENGINE_REMOTE_DEBUGGING): prints document.body.innerText of the first page.
Usage: pagetext.py PORT [EXPRESSION]"""
import base64
import json
import os
import socket
import struct
import sys
import urllib.request


def websocket(url):
    host_port, path = url[len("ws://"):].split("/", 1)
    host, port = host_port.split(":")
    sock = socket.create_connection((host, int(port)), timeout=10)
    key = base64.b64encode(os.urandom(16)).decode()
    sock.sendall((f"GET /{path} HTTP/1.1\r\nHost: {host_port}\r\nUpgrade: websocket\r\n"
                  f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n").encode())
    reply = b""
    while b"\r\n\r\n" not in reply:
        chunk = sock.recv(4096)
        if not chunk:
            raise RuntimeError("handshake failed")
        reply += chunk
    if b" 101 " not in reply.split(b"\r\n", 1)[0]:
        raise RuntimeError(reply.decode(errors="replace"))
    return sock, reply.split(b"\r\n\r\n", 1)[1]


def send(sock, text):
    data = text.encode()
    header = bytes([0x81])
    if len(data) < 126:
        header += bytes([0x80 | len(data)])
    elif len(data) < 65536:
        header += bytes([0x80 | 126]) + struct.pack(">H", len(data))
    else:
        header += bytes([0x80 | 127]) + struct.pack(">Q", len(data))
    mask = os.urandom(4)
    sock.sendall(header + mask + bytes(b ^ mask[i % 4] for i, b in enumerate(data)))


def receive(sock, pending):
    buffer = pending

    def need(n):
        nonlocal buffer
        while len(buffer) < n:
            chunk = sock.recv(65536)
            if not chunk:
                raise RuntimeError("connection closed")
            buffer += chunk

    message = b""
    while True:
        need(2)
        first, second = buffer[0], buffer[1]
        length, offset = second & 0x7F, 2
        if length == 126:
            need(4)
            length, offset = struct.unpack(">H", buffer[2:4])[0], 4
        elif length == 127:
            need(10)
            length, offset = struct.unpack(">Q", buffer[2:10])[0], 10
        need(offset + length)
        message += buffer[offset:offset + length]
        buffer = buffer[offset + length:]
        if first & 0x80:
            return message.decode(), buffer


def main():
    port = sys.argv[1]
    expression = sys.argv[2] if len(sys.argv) > 2 else "document.body.innerText"
    pages = json.load(urllib.request.urlopen(f"http://127.0.0.1:{port}/json", timeout=10))
    page = next(p for p in pages if p.get("type") == "page")
    sock, pending = websocket(page["webSocketDebuggerUrl"])
    send(sock, json.dumps({"id": 1, "method": "Runtime.evaluate",
                           "params": {"expression": expression, "returnByValue": True}}))
    while True:
        text, pending = receive(sock, pending)
        answer = json.loads(text)
        if answer.get("id") == 1:
            print(answer["result"]["result"].get("value", ""))
            return


if __name__ == "__main__":
    main()
