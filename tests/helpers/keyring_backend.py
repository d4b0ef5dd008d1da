"""The tests that python3-keyring has for every backend, with the one of the examples."""
import keyring_vxfoundation
from keyring.testing.backend import BackendBasicTests


class TestKeyring(BackendBasicTests):
    def init_keyring(self):
        return keyring_vxfoundation.Keyring()
