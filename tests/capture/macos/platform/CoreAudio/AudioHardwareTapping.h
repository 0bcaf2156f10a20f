#pragma once

#include <CoreAudio/CATapDescription.h>
#include <CoreAudio/CoreAudio.h>

OSStatus AudioHardwareCreateProcessTap(CATapDescription*, AudioObjectID*);
OSStatus AudioHardwareDestroyProcessTap(AudioObjectID);
