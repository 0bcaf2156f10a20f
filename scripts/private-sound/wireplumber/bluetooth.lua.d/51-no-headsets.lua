-- WirePlumber 0.4: a private sound server opens no headset either.
bluez_monitor.enabled = false
