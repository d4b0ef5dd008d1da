"""What the scripts that start a credential service have in common."""
import subprocess
import sys
import time

SERVICE = "org.freedesktop.secrets"


def ask(path, method, *arguments):
    """Returns the value in the reply of the service; an empty string if there is none."""
    reply = subprocess.run(["dbus-send", "--session", "--print-reply=literal", "--reply-timeout=2000",
                            "--dest=" + SERVICE, path, method, *arguments], capture_output=True, text=True)
    return reply.stdout.strip() if reply.returncode == 0 else ""


def default_collection():
    """Returns the path of the default collection; "/" if there is none, and "" without a service."""
    return ask("/org/freedesktop/secrets", "org.freedesktop.Secret.Service.ReadAlias", "string:default")


def is_ready():
    return len(default_collection()) > 1


def is_unlocked():
    locked = ask(default_collection() or "/", "org.freedesktop.DBus.Properties.Get",
                 "string:org.freedesktop.Secret.Collection", "string:Locked")
    return locked.endswith("boolean false")


def wait_until(condition, seconds=20):
    """Returns whether the condition has come true in time."""
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.1)
    return True


def run(command, daemon, condition):
    """Runs a command once the condition is true, and ends the daemon; returns the command's status."""
    try:
        if not wait_until(condition):
            sys.exit("the service did not start")
        status = subprocess.run(command).returncode
        if daemon.poll() is not None:
            print(f"the service ended by itself, with status {daemon.returncode}", file=sys.stderr)
        return status
    finally:
        daemon.kill()
        daemon.wait()
