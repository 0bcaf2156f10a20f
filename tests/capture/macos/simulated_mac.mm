#include "simulated_mac.h"

#include "capture/macos/native_text.h"

#import <AppKit/AppKit.h>
#import <CoreAudio/AudioHardwareTapping.h>

#include <QJsonDocument>
#include <QtEndian>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace {

std::mutex ioMutex; // held by every call, and for a whole IO cycle, as stopping waits for it

// One call: noted, judged, and answered with the status chosen for it.
template <typename Effect> OSStatus call(const QString& function, bool legal, Effect effect) {
    const std::lock_guard lock(ioMutex);
    mac().calls.append(function);
    if (!legal)
        mac().faults.append(function);
    const OSStatus status = legal ? mac().refusals.value(function, noErr) : -1;
    if (status == noErr)
        effect();
    return status;
}

OSStatus create(const char* function, NSDictionary* description, QJsonObject& facts, char kind,
                AudioObjectID* object) {
    NSData* json = [NSJSONSerialization dataWithJSONObject:description options:0 error:nullptr];
    facts = QJsonDocument::fromJson(
                {static_cast<const char*>([json bytes]), static_cast<qsizetype>([json length])})
                .object();
    return call(QLatin1String(function), true,
                [&] { mac().live.insert(*object = ++mac().lastId, kind); });
}

OSStatus destroy(const char* function, char kind, AudioObjectID object) {
    return call(QLatin1String(function),
                mac().live.value(object) == kind && mac().ioDevice != object,
                [&] { mac().live.remove(object); });
}

bool isIo(AudioObjectID device, AudioDeviceIOProcID id) {
    return mac().ioDevice == device && mac().ioProcedure != nullptr && mac().ioProcedure == id;
}

template <typename Effect>
OSStatus property(AudioObjectID object, const AudioObjectPropertyAddress& address, Effect effect) {
    const UInt32 code = qToBigEndian(address.mSelector);
    const QString selector = QString::fromLatin1(reinterpret_cast<const char*>(&code), 4);
    const UInt32 scope = address.mSelector == kAudioDevicePropertyStreams
                             ? kAudioObjectPropertyScopeOutput
                             : kAudioObjectPropertyScopeGlobal;
    const bool alive = object < 1000 || mac().live.contains(object);
    const auto found = mac().properties.find({object < 1000 ? object : 0, selector});
    const OSStatus status = call(selector, alive && address.mScope == scope, [] {});
    if (status != noErr || found == mac().properties.end())
        return status != noErr ? status : 'who?';
    effect(*found);
    return noErr;
}

} // namespace

SimulatedMac& mac() {
    static SimulatedMac instance;
    return instance;
}

bool SimulatedMac::isClean() const {
    return faults.isEmpty() && live.isEmpty() && strings.isEmpty() && !ioProcedure &&
           tapDescriptions == 0;
}

bool deliver(const QList<SimulatedMac::Buffer>& buffers, const AudioTimeStamp* inputTime) {
    const std::lock_guard lock(ioMutex);
    struct {
        UInt32 count = 0;
        AudioBuffer buffers[40];
    } list;
    for (const auto& [channels, bytes, byteSize] : buffers)
        list.buffers[list.count++] = {channels,
                                      byteSize.value_or(static_cast<UInt32>(bytes.size())),
                                      bytes.isNull() ? nullptr : const_cast<char*>(bytes.data())};
    const auto* input = buffers.isEmpty() ? nullptr : reinterpret_cast<AudioBufferList*>(&list);
    if (mac().running)
        std::thread(mac().ioProcedure, mac().ioDevice, inputTime, input, inputTime, nullptr,
                    nullptr, mac().ioClientData)
            .join();
    return mac().running;
}

void CFRelease(CFTypeRef object) {
    call(QStringLiteral("CFRelease"), mac().strings.remove(object),
         [&] { [static_cast<id>(const_cast<void*>(object)) release]; });
}

OSStatus AudioObjectGetPropertyDataSize(AudioObjectID object,
                                        const AudioObjectPropertyAddress* address, UInt32,
                                        const void*, UInt32* size) {
    return property(object, *address, [&](auto& value) {
        auto& list = std::get<QByteArray>(value);
        *size = static_cast<UInt32>(list.size());
        list.chop(mac().listsShrink ? 4 : 0);
    });
}

OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress* address,
                                    UInt32, const void*, UInt32* size, void* data) {
    return property(object, *address, [&](auto& value) {
        const auto* text = std::get_if<QString>(&value);
        const void* string = text && !text->isNull() ? [qn::toNative(*text) mutableCopy] : nil;
        if (string)
            mac().strings.insert(string);
        const auto bytes = text ? QByteArray(reinterpret_cast<char*>(&string), sizeof string)
                                : std::get<QByteArray>(value);
        if (*size < bytes.size())
            mac().faults.append(QStringLiteral("too little room for a property"));
        *size = std::min(*size, static_cast<UInt32>(bytes.size()));
        std::copy_n(bytes.data(), *size, static_cast<char*>(data));
    });
}

OSStatus AudioHardwareCreateProcessTap(CATapDescription* description, AudioObjectID* tap) {
    return create(__func__, description->facts, mac().tap, 't', tap);
}

OSStatus AudioHardwareDestroyProcessTap(AudioObjectID tap) {
    return destroy(__func__, 't', tap);
}

OSStatus AudioHardwareCreateAggregateDevice(CFDictionaryRef description, AudioObjectID* device) {
    return create(__func__, reinterpret_cast<NSDictionary*>(description), mac().aggregate, 'a',
                  device);
}

OSStatus AudioHardwareDestroyAggregateDevice(AudioObjectID device) {
    return destroy(__func__, 'a', device);
}

OSStatus AudioDeviceCreateIOProcID(AudioObjectID device, AudioDeviceIOProc procedure,
                                   void* clientData, AudioDeviceIOProcID* id) {
    return call(QLatin1String(__func__), mac().live.value(device) == 'a' && !mac().ioProcedure,
                [&] {
                    mac().ioDevice = device;
                    mac().ioProcedure = *id = procedure;
                    mac().ioClientData = clientData;
                });
}

OSStatus AudioDeviceDestroyIOProcID(AudioObjectID device, AudioDeviceIOProcID id) {
    return call(QLatin1String(__func__), isIo(device, id) && !mac().startCalled, [] {
        mac().ioDevice = 0;
        mac().ioProcedure = nullptr;
    });
}

OSStatus AudioDeviceStart(AudioObjectID device, AudioDeviceIOProcID id) {
    const bool legal = isIo(device, id) && !std::exchange(mac().startCalled, true);
    return call(QLatin1String(__func__), legal, [] { mac().running = true; });
}

// Stopping what refused to start is allowed, stopping what nobody tried to start is not.
OSStatus AudioDeviceStop(AudioObjectID device, AudioDeviceIOProcID id) {
    const bool legal = isIo(device, id) && std::exchange(mac().startCalled, false);
    return call(QLatin1String(__func__), legal, [] { mac().running = false; });
}

// The host clock counts 24 MHz ticks and is an hour ahead of the steady clock.
UInt64 AudioGetCurrentHostTime() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch() + std::chrono::hours(1);
    return static_cast<UInt64>(std::chrono::nanoseconds(now).count()) * 3 / 125;
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
    ++mac().tapDescriptions;
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
    --mac().tapDescriptions;
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
    for (const auto& [bundleId, name, policy, pid] : mac().applications) {
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
