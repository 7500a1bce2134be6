-- WirePlumber 0.4. No hardware, and no waiting for a Bluetooth service.
bluez_monitor.enabled = false
