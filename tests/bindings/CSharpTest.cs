// The C# binding with the simulated SDKs.
//   CSharpTest SDK-DIRECTORY
using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text;
using Orvane.DesktopCamera;

class TestAttribute : Attribute { }

static class CSharpTest
{
    [DllImport("ASICamera2")] static extern void sim_reset();
    [DllImport("ASICamera2")] static extern int sim_command(byte[] commands);
    [DllImport("ASICamera2")] static extern void sim_invariants(int[] invariants);
    [DllImport("ASICamera2")] static extern int sim_render_frame(int frame, byte[] buffer, int length);
    [DllImport("ASICamera2")] static extern int sim_get_camera(int index, byte[] camera);
    [DllImport("ASICamera2")] static extern int sim_set_cameras(byte[] camera, int count);

    // Of all simulated SDKs.
    static readonly int CameraCount = int.Parse(Environment.GetEnvironmentVariable("ORVANE_CAMERAS"));
    static string sdks;
    static IReadOnlyList<CameraInfo> cameras;

    static void Check(bool holds, string what)
    {
        if (!holds)
        {
            throw new InvalidOperationException(what);
        }
    }

    static void CheckEqual<T>(T expected, T got) =>
        Check(Equals(expected, got), "expected " + expected + ", got " + got);

    // The message of the exception that this throws.
    static string Thrown<E>(Action action) where E : Exception
    {
        try
        {
            action();
        }
        catch (E caught)
        {
            return caught.Message;
        }
        throw new InvalidOperationException("no " + typeof(E).Name);
    }

    static void CheckThrows<E>(string message, Action action) where E : Exception =>
        CheckEqual(message, Thrown<E>(action));

    static void Command(string text) =>
        CheckEqual(1, sim_command(Encoding.UTF8.GetBytes(text + "\0")));

    static Camera Open(int index = 0, Format format = Format.Raw8, long exposureUs = 1000) =>
        CameraLibrary.Open(cameras[index], new CameraSettings
        {
            Width = 64, Height = 48, Format = format, ExposureUs = exposureUs
        });

    static int IndexOf(string prefix) => cameras.First(one => one.Name.StartsWith(prefix)).Index;

    static void CheckAllClosed()
    {
        var invariants = new int[6];
        sim_invariants(invariants);
        CheckEqual("0 0 0 0 0 0", string.Join(" ", invariants));
    }

    [Test] static void CamerasOfEveryMaker()
    {
        ScanResult found = CameraLibrary.Scan(sdks);
        CheckEqual(Environment.GetEnvironmentVariable("ORVANE_SDKS"), string.Join(", ", found.Libraries));
        CheckEqual(CameraCount, found.Cameras.Count);
        CheckEqual("", found.Error);
        CameraInfo first = found.Cameras[0];
        CheckEqual("0 ZWO ASI120MC-S 1280 960 12 3.75", string.Format(
            System.Globalization.CultureInfo.InvariantCulture, "{0} {1} {2} {3} {4} {5}", first.Index,
            first.Name, first.MaxWidth, first.MaxHeight, first.BitDepth, first.PixelSizeUm));
        CheckEqual("1,2 8,16", string.Join(" ", new[] { first.Bins, first.Depths }
            .Select(numbers => string.Join(",", numbers))));
        CheckEqual("Raw8,Rgb24,Mono8,Raw16", string.Join(",", first.Formats));
        Check(first.IsColor && !first.IsCooled && first.IsUsb3Camera, "flags");
        CheckEqual(Bayer.Grbg, first.Bayer);
        Check(first.MaxExposureUs > 1000000 && first.MaxGain > first.MinGain, "limits");
    }

    static string Codes<E>() =>
        string.Join(" ", Enum.GetValues(typeof(E)).Cast<E>().Select(one => one + "=" + Convert.ToInt32(one)));

    [Test] static void CodesOfFormatsAndBayerPatterns()
    {
        CheckEqual("Raw8=0 Raw16=1 Rgb24=2 Mono8=3", Codes<Format>());
        CheckEqual("None=0 Rggb=8 Grbg=9 Gbrg=10 Bggr=11", Codes<Bayer>());
    }

    [Test] static void ACameraThatCannotBeOpenedHasNoLimitsAndNoMessage()
    {
        Command("force ASIOpenCamera 1 1 16");
        ScanResult found = CameraLibrary.Scan(sdks);
        CameraInfo first = found.Cameras[0];
        CheckEqual("0 0 0", first.MaxExposureUs + " " + first.MinGain + " " + first.MaxGain);
        Check(found.Cameras[1].MaxGain > 0, "the limits of the next one");
        CheckEqual("", found.Error);
    }

    [Test] static void NamesThatLookLikeKeysAndPixelSizesThatAreNoNumbers()
    {
        var camera = new byte[2048];
        CheckEqual(1, sim_get_camera(0, camera));
        byte[] name = Encoding.UTF8.GetBytes("é\"pixelSizeUm\":nan,\\\0");
        Array.Copy(name, camera, name.Length);
        CheckEqual(1, sim_set_cameras(camera, 1));
        CameraInfo found = CameraLibrary.Scan(sdks).Cameras[0];
        CheckEqual("é\"pixelSizeUm\":nan,\\", found.Name);
        CheckEqual(3.75, found.PixelSizeUm);
        foreach (string size in new[] { "nan", "-nan" })
        {
            Command("output ASIGetCameraProperty PixelSize 1 1 " + size);
            Check(double.IsNaN(CameraLibrary.Scan(sdks).Cameras[0].PixelSizeUm), size);
        }
        Command("output ASIGetCameraProperty PixelSize 1 1 -inf");
        CheckEqual(double.NegativeInfinity, CameraLibrary.Scan(sdks).Cameras[0].PixelSizeUm);
        CheckThrows<FormatException>("Not the description of a camera: {}", () => CameraInfo.FromJson("{}"));
    }

    [Test] static void WhatCannotBeReadIsTold()
    {
        Command("force ASIGetCameraProperty 2 1 4");
        ScanResult found = CameraLibrary.Scan(sdks);
        CheckEqual(CameraCount - 3, found.Cameras.Count);
        Check(found.Error.StartsWith("ASI"), found.Error);
    }

    [Test] static void NoScanWhileACameraIsOpenAndNoPathThatCannotBe()
    {
        using (Open())
        {
            CheckThrows<CameraException>("Stop the preview before rescanning", () => CameraLibrary.Scan(sdks));
        }
        CheckThrows<EncoderFallbackException>(
            Thrown<EncoderFallbackException>(() => new UTF8Encoding(false, true).GetBytes("/\ud800\0")),
            () => CameraLibrary.Scan("/\ud800"));
    }

    [Test] static void FailedOpensLeaveNothingOpen()
    {
        CheckThrows<CameraException>("Exposure out of range", () => Open(exposureUs: 0));
        CheckThrows<CameraException>("Unsupported bin or format", () => Open(format: (Format)7));
        Camera before = Open();
        Command("force ASIStartVideoCapture 1 1 16");
        CheckThrows<CameraException>("ASIStartVideoCapture: 16", () => Open());
        Check(before.IsClosed, "the camera before is closed");
    }

    [Test] static void AnotherCameraClosesTheFirst()
    {
        Camera first = Open();
        using (Camera second = Open(4))
        {
            var buffer = new byte[second.BufferSize];
            Check(first.IsClosed, "closed");
            CheckThrows<CameraException>("Camera closed", () => first.Read(buffer));
            first.Dispose();
            CheckEqual(64 * 48, second.Read(buffer).Length);
        }
    }

    [Test] static void ClosedWhenTheBlockFails() =>
        CheckThrows<InvalidOperationException>("in the block", () =>
        {
            using (Open())
            {
                throw new InvalidOperationException("in the block");
            }
        });

    [Test] static void FramesAreTheBuffersFilledPart()
    {
        Command("clock stopped");
        var buffer = new byte[64 * 48 * 2 + 5];
        var expected = new byte[64 * 48 * 2];
        using (Camera camera = Open(format: Format.Raw16))
        {
            for (int number = 0; number < 3; ++number)
            {
                ReadOnlySpan<byte> frame = camera.Read(buffer);
                CheckEqual(expected.Length, sim_render_frame(number, expected, expected.Length));
                Check(frame.SequenceEqual(expected), "frame " + number);
                Check(frame.Overlaps(buffer), "a part of the buffer");
            }
        }
    }

    [Test] static void EveryMaker()
    {
        foreach (string prefix in new[] { "ZWO", "Mars", "QHY", "SkyRaider" })
        {
            using (Camera camera = Open(IndexOf(prefix)))
            {
                CheckEqual(camera.Width * camera.Height, camera.Read(new byte[camera.BufferSize]).Length);
            }
        }
    }

    [Test] static void TimeOuts()
    {
        using (Camera camera = Open())
        {
            var buffer = new byte[camera.BufferSize];
            Command("force ASIGetVideoData 1 -1 11");
            CheckEqual(0, camera.Poll(buffer, 5).Length);
            CheckThrows<FrameTimeoutException>("No frame within 30 ms", () => camera.Read(buffer, 30));
        }
        using (Camera camera = Open(IndexOf("QHY"), exposureUs: 60000000))
        {
            var buffer = new byte[camera.BufferSize];
            CheckThrows<FrameTimeoutException>("No frame within 30 ms", () => camera.Read(buffer, 30));
        }
    }

    [Test] static void FailedReadsLeaveTheCameraOpen()
    {
        using (Camera camera = Open())
        {
            var buffer = new byte[camera.BufferSize];
            Command("force ASIGetVideoData 1 1 4");
            CheckThrows<CameraException>("ASIGetVideoData: 4", () => camera.Read(buffer));
            CheckThrows<CameraException>("Camera closed or buffer too small",
                                         () => camera.Read(new byte[buffer.Length - 1]));
            CheckThrows<CameraException>("Camera closed or buffer too small",
                                         () => camera.Read(Span<byte>.Empty));
            CheckEqual(64 * 48, camera.Read(buffer).Length);
            Command("unplug 0 ASIGetVideoData 0");
            Check(Thrown<CameraException>(() => camera.Read(buffer)).StartsWith("ASIGetVideoData: "), "unplugged");
        }
    }

    [Test] static void SettingsAndTemperature()
    {
        Camera camera = Open();
        camera.Apply(2000, 7, 3);
        CheckThrows<CameraException>("Exposure out of range", () => camera.Apply(0, 0, 0));
        Command("force ASISetControlValue 2 1 8");
        CheckThrows<CameraException>("ASI gain: 8", () => camera.Apply(1000, 0, 0));
        Check(camera.Temperature > -50 && camera.Temperature < 50, "temperature");
        camera.Dispose();
        camera.Dispose();
        Check(double.IsNaN(camera.Temperature), "no temperature");
        CheckThrows<CameraException>("Camera closed", () => camera.Apply(1000, 0, 0));
    }

    static int Main(string[] arguments)
    {
        sdks = arguments[0];
        CameraLibrary.Scan(sdks);
        var tests = typeof(CSharpTest).GetMethods(BindingFlags.Static | BindingFlags.NonPublic)
            .Where(method => method.IsDefined(typeof(TestAttribute)))
            .Select(method => (Action)Delegate.CreateDelegate(typeof(Action), method)).ToList();
        int failed = 0;
        foreach (Action test in tests)
        {
            try
            {
                sim_reset();
                cameras = CameraLibrary.Scan(sdks).Cameras;
                test();
                CheckAllClosed();
            }
            catch (Exception failure)
            {
                ++failed;
                Console.WriteLine("FAILED: " + test.Method.Name + ": " + failure);
                CameraLibrary.OpenCamera?.Dispose();
            }
        }
        Console.WriteLine(tests.Count + " tests, " + (failed == 0 ? "all passed" : failed + " failed"));
        return failed == 0 ? 0 : 1;
    }
}
