#pragma once

// The system's own names for what the backend uses, with its layouts and values.
// clang-format off
#include <cstdint>

typedef std::uint32_t UInt32, AudioObjectID, AudioObjectPropertySelector, AudioObjectPropertyScope;
typedef std::uint64_t UInt64;
typedef std::int32_t OSStatus;
typedef const void* CFTypeRef;
typedef const struct OpaqueString* CFStringRef;
typedef const struct OpaqueDictionary* CFDictionaryRef;

struct AudioObjectPropertyAddress { UInt32 mSelector, mScope, mElement; };
struct AudioStreamBasicDescription {
    double mSampleRate;
    UInt32 mFormatID, mFormatFlags, mBytesPerPacket, mFramesPerPacket, mBytesPerFrame;
    UInt32 mChannelsPerFrame, mBitsPerChannel, mReserved;
};
struct AudioBuffer { UInt32 mNumberChannels, mDataByteSize; void* mData; };
struct AudioBufferList { UInt32 mNumberBuffers; AudioBuffer mBuffers[1]; };
struct AudioTimeStamp {
    double mSampleTime; UInt64 mHostTime; double mRateScalar; UInt64 mWordClockTime;
    UInt32 mSMPTETime[6], mFlags, mReserved;
};
typedef OSStatus (*AudioDeviceIOProc)(AudioObjectID, const AudioTimeStamp*, const AudioBufferList*,
    const AudioTimeStamp*, AudioBufferList*, const AudioTimeStamp*, void*);
typedef AudioDeviceIOProc AudioDeviceIOProcID;

enum : OSStatus { noErr = 0, kAudioHardwareNotRunningError = 'stop' };
enum : UInt32 {
    kAudioObjectUnknown = 0, kAudioObjectSystemObject = 1, kAudioObjectPropertyElementMain = 0,
    kAudioObjectPropertyScopeGlobal = 'glob', kAudioObjectPropertyScopeOutput = 'outp',
    kAudioHardwarePropertyDefaultOutputDevice = 'dOut', kAudioHardwarePropertyDevices = 'dev#',
    kAudioHardwarePropertyProcessObjectList = 'prs#', kAudioHardwarePropertyTapList = 'tps#', kAudioProcessPropertyPID = 'ppid',
    kAudioProcessPropertyBundleID = 'pbid',
    kAudioDevicePropertyStreams = 'stm#', kAudioDevicePropertyDeviceUID = 'uid ',
    kAudioObjectPropertyName = 'lnam', kAudioTapPropertyFormat = 'tfmt', kAudioTapPropertyUID = 'tuid',
    kAudioFormatLinearPCM = 'lpcm', kAudioFormatFlagIsFloat = 1, kAudioTimeStampHostTimeValid = 2
};

void CFRelease(CFTypeRef);
OSStatus AudioObjectGetPropertyDataSize(AudioObjectID, const AudioObjectPropertyAddress*, UInt32, const void*, UInt32*);
OSStatus AudioObjectGetPropertyData(AudioObjectID, const AudioObjectPropertyAddress*, UInt32, const void*, UInt32*, void*);
OSStatus AudioHardwareCreateAggregateDevice(CFDictionaryRef, AudioObjectID*);
OSStatus AudioHardwareDestroyAggregateDevice(AudioObjectID);
OSStatus AudioDeviceCreateIOProcID(AudioObjectID, AudioDeviceIOProc, void*, AudioDeviceIOProcID*);
OSStatus AudioDeviceDestroyIOProcID(AudioObjectID, AudioDeviceIOProcID);
OSStatus AudioDeviceStart(AudioObjectID, AudioDeviceIOProcID);
OSStatus AudioDeviceStop(AudioObjectID, AudioDeviceIOProcID);
UInt64 AudioGetCurrentHostTime();
UInt64 AudioConvertHostTimeToNanos(UInt64);
