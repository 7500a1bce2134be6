-- WirePlumber 0.4. No hardware: what this machine has would change what the tests find.
alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false

-- Each application starts at full volume on the default output, whatever ran before it.
stream_defaults.properties["restore-props"] = false
stream_defaults.properties["restore-target"] = false
