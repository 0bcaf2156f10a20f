#include "simulated_mac.h"

#include "capture/macos/native_text.h"
#include "core/audio_block.h"

#import <AppKit/AppKit.h>
#import <CoreAudio/AudioHardwareTapping.h>

#include <QJsonDocument>
#include <QtEndian>

#include <algorithm>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace {

std::mutex ioMutex; // held by every call, and for a whole IO cycle, as stopping waits for it

// One call: noted, judged, and answered with the status chosen for it.
template <typename Effect> OSStatus call(const char* name, bool legal, Effect effect) {
    const std::lock_guard lock(ioMutex);
    const QString function = QString::fromLatin1(name);
    mac.calls.append(function);
    if (!legal)
        mac.faults.append(function);
    const OSStatus status = legal ? mac.refusals.value(function, noErr) : -1;
    if (status == noErr)
        effect();
    return status;
}

OSStatus create(const char* function, NSDictionary* description, QString& facts, char kind,
                AudioObjectID* object) {
    NSData* json = [NSJSONSerialization dataWithJSONObject:description options:0 error:nullptr];
    const auto* text = static_cast<const char*>([json bytes]);
    const auto sorted = QJsonDocument::fromJson({text, static_cast<qsizetype>([json length])});
    facts = QString::fromUtf8(sorted.toJson(QJsonDocument::Compact).replace('"', '\''));
    return call(function, true, [&] { mac.live.insert(*object = ++mac.lastId, kind); });
}

OSStatus destroy(const char* function, char kind, AudioObjectID object) {
    return call(function, mac.live.value(object) == kind && mac.ioDevice != object,
                [&] { mac.live.remove(object); });
}

bool isIo(AudioObjectID device, AudioDeviceIOProcID id) {
    return mac.ioDevice == device && mac.ioProcedure != nullptr && mac.ioProcedure == id;
}

template <typename Effect>
OSStatus property(AudioObjectID object, const AudioObjectPropertyAddress& address, Effect effect) {
    const UInt32 code = qToBigEndian(address.mSelector);
    const QByteArray name(reinterpret_cast<const char*>(&code), 4);
    const QString selector = QString::fromLatin1(name);
    const UInt32 scope = address.mSelector == kAudioDevicePropertyStreams
                             ? kAudioObjectPropertyScopeOutput
                             : kAudioObjectPropertyScopeGlobal;
    const bool isOther = mac.running && mac.properties.contains({2, selector});
    const AudioObjectID owner = object < 1000 ? object : isOther ? 2 : 0;
    const bool legal = address.mScope == scope && (object < 1000 || mac.live.contains(object));
    const auto found = mac.properties.find({owner, selector});
    const OSStatus status = call(name.constData(), legal, [] {});
    if (found == mac.properties.end())
        return 'who?';
    if (status == noErr)
        effect(*found);
    return status;
}

} // namespace

bool SimulatedMac::isClean() const {
    return faults.isEmpty() && live.isEmpty() && unreleased.isEmpty() && !ioProcedure;
}

void deliver(const QList<SimulatedMac::Buffer>& buffers, const AudioTimeStamp* inputTime) {
    const std::lock_guard lock(ioMutex);
    struct {
        UInt32 count = 0;
        AudioBuffer buffers[40];
    } list;
    for (const auto& [channels, bytes, byteSize] : buffers) {
        auto* data = bytes.isNull() ? nullptr : const_cast<char*>(bytes.data());
        list.buffers[list.count++] = {channels, byteSize.value_or(UInt32(bytes.size())), data};
    }
    const auto* input = buffers.isEmpty() ? nullptr : reinterpret_cast<AudioBufferList*>(&list);
    if (mac.running)
        std::jthread(mac.ioProcedure, mac.ioDevice, inputTime, input, inputTime, nullptr, nullptr,
                     mac.ioClientData);
}

void CFRelease(CFTypeRef object) {
    call(__func__, mac.unreleased.remove(object),
         [&] { [static_cast<id>(const_cast<void*>(object)) release]; });
}

OSStatus AudioObjectGetPropertyDataSize(AudioObjectID object,
                                        const AudioObjectPropertyAddress* address, UInt32,
                                        const void*, UInt32* size) {
    return property(object, *address, [&](auto& value) {
        *size = static_cast<UInt32>(std::get<QByteArray>(value).size());
    });
}

OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress* address,
                                    UInt32, const void*, UInt32* size, void* data) {
    return property(object, *address, [&](auto& value) {
        const auto* text = std::get_if<QString>(&value);
        const void* string = text && !text->isNull() ? [qn::toNative(*text) mutableCopy] : nil;
        if (string)
            mac.unreleased.insert(string);
        const auto bytes = text ? QByteArray(reinterpret_cast<char*>(&string), sizeof string)
                                : std::get<QByteArray>(value);
        if (*size < bytes.size())
            mac.faults.append(QStringLiteral("too little room for a property"));
        *size = std::min(*size, static_cast<UInt32>(bytes.size()));
        std::copy_n(bytes.data(), *size, static_cast<char*>(data));
    });
}

OSStatus AudioHardwareCreateProcessTap(CATapDescription* description, AudioObjectID* tap) {
    return create(__func__, description->facts, mac.tap, 't', tap);
}

OSStatus AudioHardwareDestroyProcessTap(AudioObjectID tap) {
    return destroy(__func__, 't', tap);
}

OSStatus AudioHardwareCreateAggregateDevice(CFDictionaryRef description, AudioObjectID* device) {
    return create(__func__, reinterpret_cast<NSDictionary*>(description), mac.aggregate, 'a',
                  device);
}

OSStatus AudioHardwareDestroyAggregateDevice(AudioObjectID device) {
    return destroy(__func__, 'a', device);
}

OSStatus AudioDeviceCreateIOProcID(AudioObjectID device, AudioDeviceIOProc procedure,
                                   void* clientData, AudioDeviceIOProcID* id) {
    return call(__func__, mac.live.value(device) == 'a' && !mac.ioProcedure, [&] {
        mac.ioDevice = device;
        mac.ioProcedure = *id = procedure;
        mac.ioClientData = clientData;
    });
}

OSStatus AudioDeviceDestroyIOProcID(AudioObjectID device, AudioDeviceIOProcID id) {
    const bool unstoppable = mac.refusals.value(QStringLiteral("AudioDeviceStop")) != noErr;
    return call(__func__, isIo(device, id) && (!mac.running || unstoppable), [] {
        mac.running = false;
        mac.ioDevice = 0;
        mac.ioProcedure = nullptr;
    });
}

OSStatus AudioDeviceStart(AudioObjectID device, AudioDeviceIOProcID id) {
    return call(__func__, isIo(device, id) && !mac.running, [] { mac.running = true; });
}

// Stopping what refused to start is allowed, stopping what nobody tried to start is not.
OSStatus AudioDeviceStop(AudioObjectID device, AudioDeviceIOProcID id) {
    const bool started = mac.running || mac.calls.last() == QStringLiteral("AudioDeviceStart");
    return call(__func__, isIo(device, id) && started, [] { mac.running = false; });
}

// The host clock counts 24 MHz ticks and is an hour ahead of the steady clock.
UInt64 AudioGetCurrentHostTime() {
    return static_cast<UInt64>(qn::steadyNowNs() + 3'600'000'000'000) * 3 / 125;
}

UInt64 AudioConvertHostTimeToNanos(UInt64 ticks) {
    return ticks * 125 / 3;
}

@implementation CATapDescription
- (instancetype)initExcludingProcesses:(NSArray*)excluded
                          andDeviceUID:(NSString*)uid
                            withStream:(NSInteger)index {
    self = [self initStereoMixdownOfProcesses:excluded];
    [facts addEntriesFromDictionary:@{@"excludes" : @1, @"device" : uid, @"stream" : @(index)}];
    return self;
}
- (instancetype)initStereoMixdownOfProcesses:(NSArray*)included {
    mac.unreleased.insert(self);
    facts = [@{@"processes" : included} mutableCopy];
    return self;
}
- (void)setName:(NSString*)text {
    [facts setObject:text forKey:@"name"];
}
- (void)setPrivate:(BOOL)flag {
    [facts setObject:[NSNumber numberWithBool:flag] forKey:@"private"];
}
- (void)dealloc {
    mac.unreleased.remove(self);
    [facts release];
    [super dealloc];
}
@end

@implementation NSRunningApplication
@synthesize activationPolicy = policy, processIdentifier = pid;
@synthesize bundleIdentifier = identifier, localizedName = name;
@end

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    return [[[NSWorkspace alloc] init] autorelease];
}
- (NSArray*)runningApplications {
    NSMutableArray* applications = [NSMutableArray array];
    for (const auto& [bundleId, name, policy, pid] : mac.applications) {
        auto* application = [[[NSRunningApplication alloc] init] autorelease];
        application.activationPolicy = policy;
        application.processIdentifier = pid != 0 ? pid : getpid();
        application.bundleIdentifier = bundleId.isNull() ? nil : qn::toNative(bundleId);
        application.localizedName = name.isNull() ? nil : qn::toNative(name);
        [applications addObject:application];
    }
    return applications;
}
@end
