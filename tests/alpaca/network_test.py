#!/usr/bin/env python3
"""Discovery, who may ask the server, the limits of requests and connections, and requests that are
garbage.

    network_test.py [--requests N] SCRATCH SDKS OC_CAPTURE COMMAND..."""

import random
import socket
import threading
import time

from server import Checks, Client, Server, free_port, settings_and_number

NAME = "/api/v1/camera/0/name"


def own_address():
    """An address of this computer that is not the loopback address; None if it has none."""
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
        try:
            probe.connect(("192.0.2.1", 9))  # sends nothing
            address = probe.getsockname()[0]
        except OSError:
            return None
    return None if address.startswith("127.") else address


def discover(port, text=b"alpacadiscovery1", address="127.0.0.1", wait=0.5):
    """The answers to a datagram."""
    answers = []
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as client:
        client.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
        client.settimeout(wait)
        client.sendto(text, (address, port))
        try:
            while True:
                answers.append(client.recv(200))
        except TimeoutError:
            return sorted(answers)


def discovery(settings, checks):
    section = "discovery"
    port = free_port()
    with Server(settings, ["ASICamera2"], discovery_port=port) as server:
        answer = b'{"AlpacaPort":%d}' % server.port
        for address in ("127.0.0.1", "127.255.255.255"):
            checks.equal(section, address, discover(port, address=address), [answer])
        checks.equal(section, "a later version", discover(port, b"alpacadiscovery1" + bytes(48)),
                     [answer])
        for text in (b"alpacadiscovery", b"alpacadiscovery2", b"Alpacadiscovery1", b"",
                     b" alpacadiscovery1", bytes(1000)):
            checks.equal(section, repr(text[:20]), discover(port, text, wait=0.2), [])
        own = own_address()
        if own:
            checks.equal(section, "not from the network", discover(port, address=own), [])
            with socket.socket() as client:
                checks.that(section, "no connection from the network",
                            client.connect_ex((own, server.port)) != 0)
        if not settings.is_windows:
            with Server(settings, ["qhyccd"], discovery_port=port) as second:
                both = sorted([answer, b'{"AlpacaPort":%d}' % second.port])
                checks.equal(section, "two servers",
                             discover(port, address="127.255.255.255"), both)
    with Server(settings, ["ASICamera2"], options=["--listen", "0.0.0.0"]) as server:
        checks.that(section, "--listen warns", "There is no password" in server.error_text())
        if own:
            checks.equal(section, "--listen answers the network",
                         discover(server.discovery_port, address=own),
                         [b'{"AlpacaPort":%d}' % server.port])
            checks.equal(section, "--listen", Client(server.port, own).get(NAME).status, 200)


def security(settings, checks, server):
    section = "security"
    client = server.client()
    machine = socket.gethostname()
    for host, status in (("127.0.0.1", 200), ("localhost", 200), (f"localhost:{server.port}", 200),
                         ("LOCALHOST", 200), ("[::1]:11111", 200), ("192.168.1.7", 200),
                         (machine, 200), (machine + ".local:80", 200), ("evil.example", 403),
                         ("127.0.0.1.evil.example", 403), ("1.2.3", 403), ("localhost.", 403),
                         ("", 403), ("[evil]", 403), ("127.0.0.1@evil.example", 403)):
        answer = client.request("GET", NAME, headers={"Host": host})
        checks.equal(section, f"Host {host}", answer.status, status)
    for path in (NAME, "/setup"):
        answer = client.request("GET", path, headers={"Origin": "http://evil.example"})
        checks.equal(section, "no permission for other sites",
                     [name for name in answer.headers if name.startswith("access-control")], [])
    raw = lambda request: answer_to(server.port, request).split(b"\r\n")[0]
    host = b"Host: 127.0.0.1\r\n"
    checks.equal(section, "long header",
                 raw(b"GET / HTTP/1.1\r\n" + host + b"X: " + b"x" * 9000 + b"\r\n\r\n"),
                 b"HTTP/1.1 431 Request Header Fields Too Large")
    for size in (b"5000", b"999999999999999999"):
        checks.equal(section, "long body", raw(b"PUT " + NAME.encode() + b" HTTP/1.1\r\n" + host +
                                               b"Content-Length: " + size + b"\r\n\r\n"),
                     b"HTTP/1.1 413 Payload Too Large")
    checks.equal(section, "no HTTP", raw(b"hello\r\n\r\n"), b"HTTP/1.1 400 Bad Request")
    checks.equal(section, "no Host", raw(b"GET / HTTP/1.1\r\n\r\n"), b"HTTP/1.1 403 Forbidden")
    connections(checks, server)


def connections(checks, server):
    section = "security"
    others = [server.client() for _ in range(15)]
    checks.that(section, "16 connections",
                all(other.get(NAME).status == 200 for other in others))
    # The test's own connection may have been closed.
    more = [server.client() for _ in range(3)]
    statuses = [other.get(NAME).status for other in more]
    checks.that(section, "more connections", statuses[-1] == 503, str(statuses))
    for other in [*others, *more]:
        other.connection.close()
    end = time.monotonic() + 10
    while server.client().get(NAME).status != 200 and time.monotonic() < end:
        time.sleep(0.05)
    checks.equal(section, "after they were closed", server.client().get(NAME).status, 200)


def answer_to(port, request):
    with socket.create_connection(("127.0.0.1", port), timeout=20) as client:
        parts = []
        try:
            client.sendall(request)
            client.shutdown(socket.SHUT_WR)
            while part := client.recv(65536):
                parts.append(part)
        except OSError:  # the server has closed the connection before it read everything
            pass
        return b"".join(parts)


SEEDS = [b"GET /api/v1/camera/0/devicestate?ClientID=1&ClientTransactionID=2 HTTP/1.1\r\n"
         b"Host: 127.0.0.1\r\nConnection: close\r\n\r\n",
         b"GET /management/v1/configureddevices HTTP/1.1\r\nHost: localhost\r\n"
         b"Connection: close\r\n\r\n",
         b"GET /setup/v1/camera/0/setup HTTP/1.0\r\nHost: localhost\r\n\r\n",
         b"PUT /api/v1/camera/0/startexposure HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
         b"Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 45\r\n\r\n"
         b"Duration=0.01&Light=true&ClientTransactionID=",
         b"PUT /api/v1/camera/0/numx HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 8\r\n\r\nNumX=100",
         b"PUT /api/v1/camera/0/binx HTTP/1.1\r\nHost: 127.0.0.1\r\nTransfer-Encoding: chunked\r\n\r\n"
         b"6\r\nBinX=1\r\n0\r\n\r\n"]
PIECES = [b"%", b"%00", b"%ff", b"\r\n", b"\0", b"&", b"=", b"-1", b"4294967296", b"1e400", b"nan",
          b"Content-Length: -1\r\n", b"Expect: 100-continue\r\n", b"/../", b"\xff\xfe", b"A" * 5000]


PARTS = [b"api", b"v1", b"camera", b"0", b"numx", b"connected", b"imagearray", b"setup", b"management",
         b"v1", b"", b"..", b"-0", b"00", b"99999999999999999999", b"configureddevices"]
VALUES = [b"", b"0", b"true", b"1", b"-1", b"4294967295", b"1e-5", b"NumX", b"%20", b"%zz", b"a" * 300]
NAMES = [b"ClientID", b"ClientTransactionID", b"NumX", b"BinX", b"Gain", b"Duration", b"Light", b"", b"%"]


def odd_request(generator):
    """A request that is HTTP, with a path and parameters put together at random."""
    path = b"/" + b"/".join(generator.choice(PARTS) for _ in range(generator.randint(0, 6)))
    if generator.random() < 0.5:
        path = b"/api/v1/camera/0/" + generator.choice(PARTS)
    form = b"&".join(generator.choice(NAMES) + b"=" + generator.choice(VALUES)
                     for _ in range(generator.randint(0, 5)))
    end = b" HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
    if generator.random() < 0.5:
        return b"GET " + path + b"?" + form + end + b"\r\n"
    return b"PUT " + path + end + b"Content-Length: %d\r\n\r\n" % len(form) + form


def garbage(generator):
    if generator.random() < 0.5:
        return odd_request(generator)
    data = bytearray(generator.choice(SEEDS))
    for _ in range(generator.randint(1, 6)):
        place = generator.randrange(len(data) + 1)
        kind = generator.randrange(4)
        if kind == 0:
            data[place:place + 1] = bytes([generator.randrange(256)])
        elif kind == 1:
            data[place:place] = generator.choice(PIECES)
        elif kind == 2:
            del data[place:place + generator.randint(1, 20)]
        else:
            data[place:place] = data[:generator.randint(1, 60)]
    return bytes(data)


def fuzz(checks, server, requests):
    section = "garbage"
    camera = next(iter(server.cameras().values()))
    camera.set("connected", Connected="true")
    camera.client.connection.close()
    counts, lock = {}, threading.Lock()

    def send(seed, count):
        generator = random.Random(seed)
        for _ in range(count):
            status = answer_to(server.port, garbage(generator))[9:12]
            with lock:
                counts[status] = counts.get(status, 0) + 1

    def send_all(seed, count):
        threads = [threading.Thread(target=send, args=(seed + number, count // 16))
                   for number in range(16)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    # Each thread of the server keeps some memory for its requests.
    send_all(1, max(320, requests // 5))
    before = server.memory()
    send_all(100, requests)
    after = server.memory()
    print(f"{requests} requests: answers {dict(sorted(counts.items()))}, "
          f"{before:.1f} MiB before, {after:.1f} MiB after")
    checks.that(section, "the server lives", server.process.poll() is None)
    checks.equal(section, "the server answers", server.client().get(NAME).status, 200)
    checks.that(section, "garbage was refused", counts.get(b"400", 0) > requests // 20)
    checks.equal(section, "no internal failure", counts.get(b"500", 0), 0)
    checks.that(section, "memory", after < before + 16, f"{before} {after}")


def main():
    settings, requests = settings_and_number("--requests", 1600)
    checks = Checks()
    discovery(settings, checks)
    with Server(settings, ["ASICamera2"]) as server:
        security(settings, checks, server)
        fuzz(checks, server, requests)
    checks.finish()


if __name__ == "__main__":
    main()
