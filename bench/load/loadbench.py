#!/usr/bin/env python3
"""Load on tavrend, and the same load on InspIRCd in the same run.

Starts both servers itself on free loopback ports, each with a data folder and configuration of
its own, and measures with one asyncio driver:

  before login       connections that never log in, idle; server resident memory per connection
  connections held   N members logged in and idle; server resident memory per connection
  fan-out            M members in one channel, S senders taking turns at one line per interval;
                     lines delivered per second, p50/p99 latency from send to receipt, server CPU
  login rate         tavrend only: logins per second with real argon2id hashes (slow on purpose)

then prints one table with both servers and the ratios tavrend/InspIRCd.

  bench/load/loadbench.py [--connections 19500] [--members 1000] [--senders 10]
                          [--interval 0.1] [--seconds 20] [--logins 40]

Every connection goes to 127.0.0.1 from a source address of its own in 127.1.0.0/16, so neither
server's per-address limits nor the ephemeral ports run out. The open-file limit is raised for
the driver and the servers (as root; otherwise as far as the hard limit goes). tavrend's accounts
are written straight into its database: for the idle and fan-out phases with a cheap argon2id hash
(the cost travels inside each hash), for the login phase with the real cost.
"""

import argparse
import asyncio
import ctypes
import ctypes.util
import os
import resource
import shutil
import signal
import socket
import sqlite3
import statistics
import struct
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TAVREND = os.path.join(ROOT, "build", "bin", "tavrend")
CLOCK_TICKS = os.sysconf("SC_CLK_TCK")


# ---------------------------------------------------------------- helpers


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def source_address(i):
    return "127.1.%d.%d" % (i // 250, i % 250 + 1)


def rss_kib(pid):
    with open("/proc/%d/status" % pid) as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    return 0


def cpu_seconds(pid):
    with open("/proc/%d/stat" % pid) as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / CLOCK_TICKS


def raise_open_files(wanted):
    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    try:
        resource.setrlimit(resource.RLIMIT_NOFILE, (wanted, max(hard, wanted)))
    except (ValueError, OSError):
        resource.setrlimit(resource.RLIMIT_NOFILE, (min(wanted, hard), hard))
    return resource.getrlimit(resource.RLIMIT_NOFILE)[0]


def percentile(values, p):
    if not values:
        return float("nan")
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(p / 100.0 * len(ordered)))]


# ---------------------------------------------------------------- argon2id through libsodium


class Sodium:
    def __init__(self):
        self.lib = ctypes.CDLL(ctypes.util.find_library("sodium") or "libsodium.so.23")
        if self.lib.sodium_init() < 0:
            raise RuntimeError("libsodium did not start")
        self.lib.crypto_pwhash_str_alg.argtypes = [
            ctypes.c_char_p, ctypes.c_char_p, ctypes.c_ulonglong, ctypes.c_ulonglong,
            ctypes.c_size_t, ctypes.c_int]

    def hash(self, password, cheap):
        out = ctypes.create_string_buffer(128)
        lib = self.lib
        ops = lib.crypto_pwhash_opslimit_min() if cheap else lib.crypto_pwhash_opslimit_interactive()
        mem = lib.crypto_pwhash_memlimit_min() if cheap else lib.crypto_pwhash_memlimit_interactive()
        if lib.crypto_pwhash_str_alg(out, password.encode(), len(password), ops, mem,
                                     lib.crypto_pwhash_alg_argon2id13()) != 0:
            raise RuntimeError("hashing failed")
        return out.value.decode()


# ---------------------------------------------------------------- the two servers


class Tavrend:
    name = "tavrend"

    def __init__(self, folder):
        self.folder = folder
        self.db = os.path.join(folder, "tavrend.db")
        self.port = free_port()
        self.process = None

    def prepare(self, count, logins, sodium):
        # Let the server lay out its schema, then write the accounts in one transaction.
        subprocess.run([TAVREND, "--db", self.db, "account", "add", "seed", "seedpass"],
                       check=True, capture_output=True)
        cheap = sodium.hash("benchpass", cheap=True)
        real = sodium.hash("benchpass", cheap=False)
        now = int(time.time())
        with sqlite3.connect(self.db) as db:
            db.executemany(
                "INSERT INTO accounts (name, password_hash, email, created_at) VALUES (?, ?, '', ?)",
                [("m%05d" % i, cheap, now) for i in range(count)] +
                [("login%03d" % i, real, now) for i in range(logins)])

    def start(self, connections):
        log = open(os.path.join(self.folder, "tavrend.log"), "w")
        # Flood meters and per-address rations are off: the driver is one host sending for
        # thousands of members, as the IRC server's throttling is off too.
        self.process = subprocess.Popen(
            [TAVREND, "--db", self.db, "--listen", "127.0.0.1:%d" % self.port,
             "--max-connections", str(connections + 1000), "--max-per-address", "100000",
             "--connect-rate", "1000000", "--connect-burst", "1000000",
             "--max-password-jobs", "100000", "--max-password-jobs-per-address", "100000",
             "--login-failures", "100000", "--frame-rate", "100000", "--flood-limit", "1000000",
             "--flood-lines", "100000", "--flood-interval", "0.01", "--ping-interval", "600",
             "--login-timeout", "600", "--max-channel-members", "40000",
             "--presence-interval", "1"],
            stdout=subprocess.PIPE, stderr=log, text=True)
        line = self.process.stdout.readline()
        while line and not line.startswith("listening on"): line = self.process.stdout.readline()
        if not line.startswith("listening on"):
            raise RuntimeError("tavrend did not start: " + line)

    def stop(self):
        if self.process:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(30)
            except subprocess.TimeoutExpired:
                self.process.kill()

    def client(self, index, name):
        return TavrenClient(self.port, source_address(index), name)

    channel = "BenchRoom"


class Inspircd:
    name = "InspIRCd"

    def __init__(self, folder):
        self.folder = folder
        self.port = free_port()
        self.process = None

    def prepare(self, count, logins, sodium):
        pass

    def start(self, connections):
        conf = os.path.join(self.folder, "inspircd.conf")
        with open(conf, "w") as f:
            f.write(f"""
<server name="bench.tavren.test" description="load benchmark peer" network="Bench">
<admin name="bench" nick="bench" email="bench@tavren.test">
<bind address="127.0.0.1" port="{self.port}" type="clients">
<connect name="main" allow="*" timeout="600" pingfreq="600" hardsendq="8M" softsendq="8M"
         recvq="64K" threshold="1000000" commandrate="100000000" fakelag="off"
         localmax="1000000" globalmax="1000000" maxconnwarn="off" limit="1000000"
         resolvehostnames="no" useident="no" maxchans="50">
<performance somaxconn="4096" softlimit="{connections + 1000}" clonesonconnect="no"
             timeskipwarn="0" nouserdns="yes">
<pid file="{self.folder}/inspircd.pid">
<log method="file" type="* -USERINPUT -USEROUTPUT" level="default"
     target="{self.folder}/inspircd.log">
<limits maxnick="30" maxchan="64" maxmodes="20" maxident="11" maxquit="255" maxtopic="307"
        maxkick="255" maxreal="128" maxgecos="128" maxaway="200">
<options prefixquit="Quit: " syntaxhints="no" announcets="no" hostintopic="no">
<security announceinvites="dynamic" hideulines="no" flatlinks="no" hidewhois=""
          hidebans="no" hidekills="" hidesplits="no" maxtargets="20" customversion=""
          restrictbannedusers="yes" genericoper="no" userstats="Pu">
<dns timeout="1">
""")
        log = open(os.path.join(self.folder, "inspircd.out"), "w")
        self.process = subprocess.Popen(
            ["inspircd", "--nofork", "--runasroot", "--config", conf], stdout=log,
            stderr=subprocess.STDOUT)
        for _ in range(100):
            try:
                socket.create_connection(("127.0.0.1", self.port), 0.2).close()
                return
            except OSError:
                time.sleep(0.1)
        raise RuntimeError("InspIRCd did not start; see " + self.folder)

    def stop(self):
        if self.process:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(30)
            except subprocess.TimeoutExpired:
                self.process.kill()

    def client(self, index, name):
        return IrcClient(self.port, source_address(index), name)

    channel = "#bench"


# ---------------------------------------------------------------- clients


class Client(asyncio.Protocol):
    """One member's connection; subclasses speak the protocol. `lines` receives
    (channel text) of every channel line, `latencies` the latency of lines stamped by senders."""

    def __init__(self, port, source, name):
        self.port, self.source, self.name = port, source, name
        self.transport = None
        self.buffer = bytearray()
        self.ready = None
        self.joined = None
        self.latencies = None
        self.received = 0

    async def connect(self):
        loop = asyncio.get_running_loop()
        self.ready = loop.create_future()
        self.joined = loop.create_future()
        await loop.create_connection(lambda: self, "127.0.0.1", self.port,
                                     local_addr=(self.source, 0))

    def connection_made(self, transport):
        self.transport = transport
        self.greet()

    def connection_lost(self, exc):
        for future in (self.ready, self.joined):
            if future and not future.done():
                future.cancel()  # whoever waits for it hears of the loss

    def on_line(self, text):
        self.received += 1
        if self.latencies is not None and text.startswith("t="):
            sent = int(text[2:].split(" ", 1)[0])
            self.latencies.append((time.monotonic_ns() - sent) / 1e6)

    def close(self):
        if self.transport:
            self.transport.close()


def frame(cmd1, cmd2, payload):
    data = payload.encode("latin-1")
    return b"*\x14" + struct.pack(">IHH", len(data), cmd1, cmd2) + data


class TavrenClient(Client):
    def greet(self):
        self.transport.write(frame(1, 6, "1.0.0"))

    def data_received(self, data):
        self.buffer += data
        while len(self.buffer) >= 10:
            length, cmd1, cmd2 = struct.unpack(">IHH", self.buffer[2:10])
            if len(self.buffer) < 10 + length:
                return
            payload = bytes(self.buffer[10:10 + length]).decode("latin-1")
            del self.buffer[:10 + length]
            self.on_frame(cmd1, cmd2, payload)

    def on_frame(self, cmd1, cmd2, payload):
        if (cmd1, cmd2) == (1, 4):
            self.transport.write(frame(1, 1, self.name + ":benchpass"))
        elif (cmd1, cmd2) == (1, 5):
            self.transport.write(frame(1, 5, "OK"))
        elif (cmd1, cmd2) == (1, 6):
            if not self.ready.done():
                self.ready.set_result(True)
        elif (cmd1, cmd2) == (1, 10):
            self.transport.write(frame(1, 10, "Pong"))
        elif cmd1 == 3:
            self.ready.set_exception(RuntimeError("login refused: " + payload))
        elif (cmd1, cmd2) == (2, 4):
            if not self.joined.done():
                self.joined.set_result(True)
        elif (cmd1, cmd2) == (2, 7):
            # channel ":" sender [U+0001 format] ":" text
            parts = payload.split(":", 2)
            if len(parts) == 3:
                self.on_line(parts[2])
        elif cmd1 == 4 and (cmd1, cmd2) != (4, 2):
            if not self.ready.done():
                self.ready.set_exception(RuntimeError("notice: " + payload))

    def join(self, channel):
        self.transport.write(frame(2, 4, channel))

    def say(self, channel, text):
        self.transport.write(frame(2, 7, channel + ":" + text))


class IrcClient(Client):
    def greet(self):
        self.transport.write(("NICK %s\r\nUSER %s 0 * :bench\r\n" % (self.name, self.name)).encode())

    def data_received(self, data):
        self.buffer += data
        while True:
            end = self.buffer.find(b"\n")
            if end < 0:
                return
            line = bytes(self.buffer[:end]).rstrip(b"\r").decode("latin-1")
            del self.buffer[:end + 1]
            self.on_irc(line)

    def on_irc(self, line):
        if line.startswith("PING"):
            self.transport.write(("PONG" + line[4:] + "\r\n").encode())
            return
        parts = line.split(" ", 3)
        if len(parts) < 2:
            return
        command = parts[1]
        if command == "001" and not self.ready.done():
            self.ready.set_result(True)
        elif (command == "JOIN" and line.startswith(":" + self.name + "!") and
              not self.joined.done()):
            self.joined.set_result(True)
        elif command == "PRIVMSG" and len(parts) == 4:
            self.on_line(parts[3][1:] if parts[3].startswith(":") else parts[3])
        elif command in ("ERROR", "433", "465") and not self.ready.done():
            self.ready.set_exception(RuntimeError(line))

    def join(self, channel):
        self.transport.write(("JOIN %s\r\n" % channel).encode())

    def say(self, channel, text):
        self.transport.write(("PRIVMSG %s :%s\r\n" % (channel, text)).encode())


# ---------------------------------------------------------------- phases


async def connect_all(server, names, first_index, batch=500):
    clients = []
    for start in range(0, len(names), batch):
        group = [server.client(first_index + start + i, name)
                 for i, name in enumerate(names[start:start + batch])]
        await asyncio.gather(*(c.connect() for c in group))
        await asyncio.wait_for(asyncio.gather(*(c.ready for c in group)), 120)
        clients.extend(group)
    return clients


class Bystander(asyncio.Protocol):
    """A connection that says nothing more than the client's first words and waits."""

    def __init__(self, hello):
        self.hello = hello

    def connection_made(self, transport):
        self.transport = transport
        transport.write(self.hello)

    def data_received(self, data):
        pass


async def unauthenticated(server, count):
    """Connections that never log in: the version frame (tavrend) or nothing (IRC), then idle."""
    loop = asyncio.get_running_loop()
    hello = frame(1, 6, "1.0.0") if isinstance(server, Tavrend) else b""
    pid = server.process.pid
    await asyncio.sleep(0.5)
    before = rss_kib(pid)
    transports = []
    for start in range(0, count, 500):
        made = await asyncio.gather(*(
            loop.create_connection(lambda: Bystander(hello), "127.0.0.1", server.port,
                                   local_addr=(source_address(30000 + i), 0))
            for i in range(start, min(count, start + 500))))
        transports.extend(t for t, _ in made)
    await asyncio.sleep(2.0)
    after = rss_kib(pid)
    for t in transports:
        t.close()
    return (after - before) / max(1, count)


async def held(server, count):
    pid = server.process.pid
    await asyncio.sleep(0.5)
    before = rss_kib(pid)
    started = time.monotonic()
    clients = await connect_all(server, ["m%05d" % i for i in range(count)], 0)
    took = time.monotonic() - started
    await asyncio.sleep(2.0)  # idle: nothing but the connections
    after = rss_kib(pid)
    return clients, {"held": len(clients), "kib_per_conn": (after - before) / max(1, len(clients)),
                     "connect_s": took, "rss_mib": after / 1024}


async def fan_out(server, clients, members, senders, interval, seconds):
    room = clients[:members]
    for start in range(0, len(room), 200):
        group = room[start:start + 200]
        for c in group:
            c.join(server.channel)
        await asyncio.wait_for(asyncio.gather(*(c.joined for c in group)), 120)
    await asyncio.sleep(2.0)  # member lists and joins settle
    latencies = []
    for c in room:
        c.latencies = latencies
        c.received = 0
    pid = server.process.pid
    cpu_before = cpu_seconds(pid)
    started = time.monotonic()
    sent = 0
    next_at = started
    while time.monotonic() - started < seconds:
        sender = room[sent % senders]
        sender.say(server.channel, "t=%d line %d from the load driver" % (time.monotonic_ns(), sent))
        sent += 1
        next_at += interval
        await asyncio.sleep(max(0.0, next_at - time.monotonic()))
    await asyncio.sleep(2.0)  # the last lines arrive
    elapsed = time.monotonic() - started
    cpu = cpu_seconds(pid) - cpu_before
    delivered = sum(c.received for c in room)
    for c in room:
        c.latencies = None
    return {"sent": sent, "delivered": delivered, "expected": sent * len(room),
            "per_s": delivered / (elapsed - 2.0), "p50": percentile(latencies, 50),
            "p99": percentile(latencies, 99), "cpu_s": cpu}


async def login_rate(server, count):
    names = ["login%03d" % i for i in range(count)]
    started = time.monotonic()
    clients = await connect_all(server, names, 60000, batch=count)
    took = time.monotonic() - started
    for c in clients:
        c.close()
    return {"logins": count, "per_s": count / took}


async def run_server(server, args):
    # A server of its own for the connections before login, so that neither measurement finds
    # the heap the other left behind.
    server.start(args.connections)
    try:
        before_login = await unauthenticated(server, args.unauthenticated)
    finally:
        server.stop()
    print("  %s: %d connections before login, %.2f KiB each" % (
        server.name, args.unauthenticated, before_login), file=sys.stderr)
    await asyncio.sleep(1.0)
    server.start(args.connections)
    try:
        clients, held_result = await held(server, args.connections)
        held_result["kib_before_login"] = before_login
        print("  %s: %d connections held, %.2f KiB each" % (
            server.name, held_result["held"], held_result["kib_per_conn"]), file=sys.stderr)
        fan = await fan_out(server, clients, args.members, args.senders, args.interval,
                            args.seconds)
        print("  %s: fan-out %d of %d lines delivered, p99 %.1f ms" % (
            server.name, fan["delivered"], fan["expected"], fan["p99"]), file=sys.stderr)
        for c in clients:
            c.close()
        await asyncio.sleep(1.0)
        logins = await login_rate(server, args.logins) if isinstance(server, Tavrend) else None
        return held_result, fan, logins
    finally:
        server.stop()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    # 20,000 is the aim; the driver needs a descriptor per connection too, so within an open-file
    # limit of 20,000 that cannot be raised (an unprivileged container) a little less.
    parser.add_argument("--connections", type=int, default=19500)
    parser.add_argument("--unauthenticated", type=int, default=5000,
                        help="idle connections that never log in, measured first")
    parser.add_argument("--members", type=int, default=1000)
    parser.add_argument("--senders", type=int, default=10)
    parser.add_argument("--interval", type=float, default=0.1)
    parser.add_argument("--seconds", type=float, default=20.0)
    parser.add_argument("--logins", type=int, default=40)
    parser.add_argument("--keep", action="store_true", help="keep the servers' folders")
    args = parser.parse_args()
    if not os.path.exists(TAVREND):
        sys.exit("build tavrend first: " + TAVREND)
    if not shutil.which("inspircd"):
        sys.exit("InspIRCd is not installed (Debian package inspircd)")
    raise_open_files(2 * args.connections + 4096)
    args.members = min(args.members, args.connections)
    args.senders = min(args.senders, args.members)

    folder = tempfile.mkdtemp(prefix="tavren-loadbench-")
    sodium = Sodium()
    results = {}
    try:
        for server in (Tavrend(os.path.join(folder, "tavrend")),
                       Inspircd(os.path.join(folder, "inspircd"))):
            os.makedirs(server.folder)
            server.prepare(args.connections, args.logins, sodium)
            print("running %s..." % server.name, file=sys.stderr)
            results[server.name] = asyncio.run(run_server(server, args))
    finally:
        if not args.keep:
            shutil.rmtree(folder, ignore_errors=True)
        else:
            print("folders kept in " + folder, file=sys.stderr)

    t_held, t_fan, t_login = results["tavrend"]
    i_held, i_fan, _ = results["InspIRCd"]

    def row(label, t, i, fmt):
        ratio = t / i if i else float("nan")
        print("%-42s %14s %14s %8.2f" % (label, fmt % t, fmt % i, ratio))

    print("\nload: %d connections held; fan-out to %d members in one channel, %d senders, one line"
          " per %g s for %g s" % (args.connections, args.members, args.senders, args.interval,
                                   args.seconds))
    print("%-42s %14s %14s %8s" % ("measure", "tavrend", "InspIRCd", "ratio"))
    row("connections held", t_held["held"], i_held["held"], "%d")
    row("memory per connection before login (KiB)", t_held["kib_before_login"],
        i_held["kib_before_login"], "%.2f")
    row("server memory per connection (KiB)", t_held["kib_per_conn"], i_held["kib_per_conn"],
        "%.2f")
    row("server resident memory held (MiB)", t_held["rss_mib"], i_held["rss_mib"], "%.1f")
    row("fan-out lines delivered", t_fan["delivered"], i_fan["delivered"], "%d")
    row("fan-out lines delivered per second", t_fan["per_s"], i_fan["per_s"], "%.0f")
    row("fan-out latency p50 (ms)", t_fan["p50"], i_fan["p50"], "%.2f")
    row("fan-out latency p99 (ms)", t_fan["p99"], i_fan["p99"], "%.2f")
    row("server CPU during fan-out (s)", t_fan["cpu_s"], i_fan["cpu_s"], "%.2f")
    print("%-42s %14.1f %14s" % ("tavrend logins per second (argon2id)", t_login["per_s"], "-"))


if __name__ == "__main__":
    main()
