-- WirePlumber 0.4: a private sound server opens no card of the machine it runs on.
alsa_monitor.enabled = false
