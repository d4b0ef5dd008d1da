"""A backend of the Python package keyring that keeps passwords in the keychain of the tool vxfoundation.

With this file where Python finds modules, the environment chooses it, and if need be the store:

    PYTHON_KEYRING_BACKEND=keyring_vxfoundation.Keyring
    VXFOUNDATION_KEYCHAIN=:desktop:
"""
import json
import subprocess

from keyring import backend, credentials, errors


class Keyring(backend.KeyringBackend):
    priority = 1
    tool = "vxfoundation"

    # The tool keeps no empty password: it is kept as a NUL, which no password has.
    empty = "\0"

    def get_password(self, service, username):
        if not self._accounts(service, username):
            return None
        password = self._call("show", service, username, "--password")[:-1]
        return "" if password == self.empty else password

    def get_credential(self, service, username):
        for account in self._accounts(service, username)[:1]:
            return credentials.SimpleCredential(account, self.get_password(service, account))
        return None

    def set_password(self, service, username, password):
        subcommand = "update" if self._accounts(service, username) else "add"
        self._call(subcommand, service, username, text=(password or self.empty) + "\n",
                   failure=errors.PasswordSetError)

    def delete_password(self, service, username):
        if not self._accounts(service, username):
            raise errors.PasswordDeleteError("There is no such password.")
        self._call("delete", service, username, failure=errors.PasswordDeleteError)

    def _accounts(self, service, username):
        return [entry["account"] for entry in json.loads(self._call("list", service, username, "--json"))]

    def _call(self, subcommand, service, username, *options, text="", failure=errors.KeyringError):
        account = [] if username is None else [f"--account={username}"]
        call = subprocess.run([self.tool, "keychain", subcommand, f"--service={service}", *account, *options],
                              input=text.encode(), capture_output=True, check=False)
        if call.returncode != 0:
            raise failure(call.stderr.decode().strip())
        return call.stdout.decode()
