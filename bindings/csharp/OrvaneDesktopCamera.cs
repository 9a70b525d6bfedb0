// The cameras of four makers (ZWO ASI, Player One, QHYCCD, ToupTek) for C#: this one file, compiled
// with AllowUnsafeBlocks, and orvane_desktop_camera.dll beside the program.
//
//     ScanResult found = CameraLibrary.Scan(@"C:\Program Files\MyCapture\sdk");
//     var settings = new CameraSettings { ExposureUs = 20000, Gain = 100 };
//     using (Camera camera = CameraLibrary.Open(found.Cameras[0], settings))
//     {
//         byte[] buffer = new byte[camera.BufferSize];
//         ReadOnlySpan<byte> frame = camera.Read(buffer);   // the buffer's filled part
//     }
//
// It needs Span: .NET Core 2.1 or newer, Mono 6, or .NET Framework with the System.Memory package.
//
// A process has one library state and at most one open camera. These classes make one call at a
// time, so any thread may use them. Dispose of the camera before the program ends.
//
// Units: exposure in microseconds, temperature in degrees Celsius, gain and offset in the maker's
// own.
using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Globalization;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;
using System.Text.RegularExpressions;
using System.Threading;

namespace Orvane.DesktopCamera
{
    /// <summary>A call failed. The message is the library's error text.</summary>
    public class CameraException : Exception
    {
        public CameraException(string message) : base(message) { }
    }

    /// <summary>No frame came in time. The camera still streams.</summary>
    public sealed class FrameTimeoutException : CameraException
    {
        public FrameTimeoutException(string message) : base(message) { }
    }

    /// <summary>The format of a frame's pixels.</summary>
    public enum Format
    {
        /// <summary>8 bits; a colour camera delivers its Bayer pattern.</summary>
        Raw8 = 0,
        /// <summary>The same with 16 bits, low byte first; left-aligned, for ToupTek right-aligned.
        /// </summary>
        Raw16 = 1,
        /// <summary>Red, green, blue for ZWO ASI; blue, green, red for Player One.</summary>
        Rgb24 = 2,
        /// <summary>8 bits of brightness.</summary>
        Mono8 = 3
    }

    /// <summary>The Bayer pattern: the first two pixels of the first row, then those of the second.
    /// </summary>
    public enum Bayer
    {
        /// <summary>A mono camera.</summary>
        None = 0,
        Rggb = 8,
        Grbg = 9,
        Gbrg = 10,
        Bggr = 11
    }

    /// <summary>One camera of the last scan. The next scan makes Index invalid.</summary>
    public sealed class CameraInfo
    {
        public int Index { get; private set; }
        public string Name { get; private set; }
        /// <summary>Of the sensor at bin 1, pixels.</summary>
        public int MaxWidth { get; private set; }
        public int MaxHeight { get; private set; }
        /// <summary>Of the sensor's converter, or only of the transfer (QHYCCD).</summary>
        public int BitDepth { get; private set; }
        /// <summary>Micrometres; NaN or infinite if the SDK reports that.</summary>
        public double PixelSizeUm { get; private set; }
        public bool IsColor { get; private set; }
        public bool IsCooled { get; private set; }
        public bool IsUsb3Camera { get; private set; }
        public bool IsUsb3Host { get; private set; }
        public IReadOnlyList<int> Bins { get; private set; }
        /// <summary>May contain values that the enumeration has no name for.</summary>
        public IReadOnlyList<Format> Formats { get; private set; }
        public IReadOnlyList<int> Depths { get; private set; }
        /// <summary>This and the two gains are 0 for a camera that could not be opened.</summary>
        public long MaxExposureUs { get; private set; }
        /// <summary>May be negative.</summary>
        public int MinGain { get; private set; }
        public int MaxGain { get; private set; }
        public Bayer Bayer { get; private set; }

        /// <summary>Reads the library's description of a camera: one flat JSON object.</summary>
        public static CameraInfo FromJson(string json)
        {
            Dictionary<string, string> fields = Field.Matches(json).Cast<Match>()
                .ToDictionary(match => match.Groups[1].Value, match => match.Groups[2].Value);
            try
            {
                return new CameraInfo
                {
                    Index = Number(fields["id"]),
                    Name = Text(fields["name"]),
                    MaxWidth = Number(fields["maxWidth"]),
                    MaxHeight = Number(fields["maxHeight"]),
                    BitDepth = Number(fields["bitDepth"]),
                    PixelSizeUm = double.Parse(fields["pixelSizeUm"].Replace("-nan", "nan"), Reals),
                    IsColor = fields["isColor"] == "true",
                    IsCooled = fields["isCooled"] == "true",
                    IsUsb3Camera = fields["isUsb3Camera"] == "true",
                    IsUsb3Host = fields["isUsb3Host"] == "true",
                    Bins = Numbers(fields["bins"]),
                    Formats = Array.ConvertAll(Numbers(fields["formats"]), code => (Format)code),
                    Depths = Numbers(fields["depths"]),
                    MaxExposureUs =
                        long.Parse(fields["maxExposureUs"], CultureInfo.InvariantCulture),
                    MinGain = Number(fields["minGain"]),
                    MaxGain = Number(fields["maxGain"]),
                    Bayer = (Bayer)Number(fields["bayer"])
                };
            }
            catch (KeyNotFoundException)
            {
                throw new FormatException("Not the description of a camera: " + json);
            }
        }

        // "key": then a text, a list, or a word or number. A text is matched as a whole, so nothing
        // inside a name is taken for a key.
        private static readonly Regex Field =
            new Regex("\"([A-Za-z0-9]+)\":(\"(?:[^\"\\\\]|\\\\.)*\"|\\[[^\\]]*\\]|[^,}]*)");

        // The invariant culture, except for the names of values that are no numbers.
        private static readonly NumberFormatInfo Reals = new NumberFormatInfo
        {
            NaNSymbol = "nan", PositiveInfinitySymbol = "inf", NegativeInfinitySymbol = "-inf"
        };

        private static int Number(string text) => int.Parse(text, CultureInfo.InvariantCulture);

        private static int[] Numbers(string list) => Array.ConvertAll(
            list.Split(new[] { '[', ',', ']' }, StringSplitOptions.RemoveEmptyEntries), Number);

        // The library removes control characters from names, so there are no other escapes.
        private static string Text(string quoted) =>
            Regex.Replace(quoted.Substring(1, quoted.Length - 2), "\\\\(.)", "$1");
    }

    /// <summary>The result of a scan.</summary>
    public sealed class ScanResult
    {
        public IReadOnlyList<CameraInfo> Cameras { get; internal set; }
        /// <summary>The base names of the SDKs that were found.</summary>
        public IReadOnlyList<string> Libraries { get; internal set; }
        /// <summary>The failures of the scan, or "". A camera that cannot be opened is not
        /// reported: a ZWO ASI or Player One camera is listed with limits of 0, and others are
        /// left out.</summary>
        public string Error { get; internal set; }
    }

    /// <summary>The settings for opening a camera.</summary>
    public sealed class CameraSettings
    {
        /// <summary>Default width and height: the whole sensor.</summary>
        public int? Width { get; set; }
        public int? Height { get; set; }
        public int Bin { get; set; } = 1;
        public Format Format { get; set; } = Format.Raw8;
        public long ExposureUs { get; set; } = 20000;
        /// <summary>Default: the lowest gain.</summary>
        public int? Gain { get; set; }
        public int Offset { get; set; }
    }

    /// <summary>The library: scans for cameras and opens one.</summary>
    public static class CameraLibrary
    {
        internal static readonly object OneCall = new object();
        internal static Camera OpenCamera;

        /// <summary>Scans for cameras with the makers' SDKs in this directory. Throws
        /// CameraException if a camera is open. ScanResult.Error reports a maker whose cameras
        /// could not all be read.</summary>
        public static ScanResult Scan(string sdkDirectory)
        {
            // Refuses text that UTF-8 cannot represent.
            byte[] directory = new UTF8Encoding(false, true).GetBytes(
                System.IO.Path.GetFullPath(sdkDirectory) + "\0");
            lock (OneCall)
            {
                Native.oc_library_dir(directory);
                int count = Native.oc_scan();
                if (count < 0)
                {
                    throw Error();
                }
                return new ScanResult
                {
                    Error = Native.Text(Native.oc_error()),
                    Libraries = Native.Text(Native.oc_libraries())
                        .Split(new[] { ", " }, StringSplitOptions.RemoveEmptyEntries),
                    Cameras = Enumerable.Range(0, count)
                        .Select(index => CameraInfo.FromJson(Native.Text(Native.oc_info(index))))
                        .ToList()
                };
            }
        }

        /// <summary>Opens a camera, which then streams. Closes the open camera first.
        /// Throws CameraException with the library's text.</summary>
        public static Camera Open(CameraInfo camera, CameraSettings settings)
        {
            lock (OneCall)
            {
                OpenCamera?.Dispose();
                int opened = Native.oc_open(
                    camera.Index,
                    settings.Width ?? camera.MaxWidth,
                    settings.Height ?? camera.MaxHeight,
                    settings.Bin, (int)settings.Format, settings.ExposureUs,
                    settings.Gain ?? camera.MinGain, settings.Offset);
                if (opened == 0)
                {
                    throw Error();
                }
                OpenCamera = new Camera(camera, settings.Format, settings.ExposureUs);
                return OpenCamera;
            }
        }

        internal static CameraException Error() =>
            new CameraException(Native.Text(Native.oc_error()));
    }

    /// <summary>An open camera that streams, from CameraLibrary.Open. Dispose closes it.</summary>
    public sealed class Camera : IDisposable
    {
        // Nothing interrupts a call, and the calls of other threads wait for it.
        private const int LongestCallMs = 1000;

        private long exposureUs;

        internal Camera(CameraInfo info, Format format, long exposureUs)
        {
            this.exposureUs = exposureUs;
            Info = info;
            Format = format;
            Width = Native.oc_width();
            Height = Native.oc_height();
            BufferSize = Native.oc_buffer_size();
        }

        public CameraInfo Info { get; }
        public Format Format { get; }
        /// <summary>Width of a frame in pixels, as the camera rounded it.</summary>
        public int Width { get; }
        public int Height { get; }
        /// <summary>The smallest permitted buffer, in bytes.</summary>
        public int BufferSize { get; }
        public bool IsClosed { get; private set; }

        /// <summary>Polls once for the next frame. Returns the filled part of the buffer, or an
        /// empty span if none is ready. Copies nothing. Only ZWO ASI's SDK waits. Nothing
        /// interrupts the wait, so use a timeout of at most a second.</summary>
        public unsafe ReadOnlySpan<byte> Poll(Span<byte> buffer, int timeoutMs)
        {
            lock (CameraLibrary.OneCall)
            {
                DemandOpen();
                fixed (byte* start = &MemoryMarshal.GetReference(buffer))
                {
                    int count = Native.oc_read(start, buffer.Length, timeoutMs);
                    if (count < 0)
                    {
                        throw CameraLibrary.Error();
                    }
                    return buffer.Slice(0, count);
                }
            }
        }

        /// <summary>Waits for the next frame and returns the filled part of the buffer: rows without
        /// padding, from the top (ToupTek on Windows: from the bottom). Throws
        /// FrameTimeoutException if none comes. Default timeout: twice the exposure plus half a
        /// second. One such timeout is normal. After five in a row assume that the camera is lost,
        /// because an unplugged camera may cause no other error.</summary>
        public ReadOnlySpan<byte> Read(Span<byte> buffer, int? timeoutMs = null)
        {
            int limitMs = timeoutMs ?? (int)Math.Min(2 * exposureUs / 1000 + 500, int.MaxValue);
            var waited = Stopwatch.StartNew();
            while (true)
            {
                long left = Math.Max(0, limitMs - waited.ElapsedMilliseconds);
                ReadOnlySpan<byte> frame = Poll(buffer, (int)Math.Min(left, LongestCallMs));
                if (frame.Length > 0)
                {
                    return frame;
                }
                if (waited.ElapsedMilliseconds >= limitMs)
                {
                    throw new FrameTimeoutException("No frame within " + limitMs + " ms");
                }
                // Only ZWO's SDK waits.
                Thread.Sleep(1);
            }
        }

        /// <summary>Sets exposure, gain and offset, in this order. The camera still streams. Values
        /// that were set before a failure stay set.</summary>
        public void Apply(long exposureUs, int gain, int offset)
        {
            lock (CameraLibrary.OneCall)
            {
                DemandOpen();
                // The SDK may have set the exposure even if a later setting fails.
                if (exposureUs >= 1 && exposureUs <= int.MaxValue)
                {
                    this.exposureUs = exposureUs;
                }
                if (Native.oc_apply(exposureUs, gain, offset) == 0)
                {
                    throw CameraLibrary.Error();
                }
            }
        }

        /// <summary>The sensor's temperature in degrees Celsius; NaN if the SDK reports none or the
        /// camera is closed. An SDK can also return a number that is not a temperature, such as
        /// 4294967295.0 or -300.</summary>
        public double Temperature
        {
            get
            {
                lock (CameraLibrary.OneCall)
                {
                    return IsClosed ? double.NaN : Native.oc_temperature();
                }
            }
        }

        /// <summary>Stops the stream and releases the camera. A second call does nothing.</summary>
        public void Dispose()
        {
            lock (CameraLibrary.OneCall)
            {
                if (!IsClosed)
                {
                    IsClosed = true;
                    CameraLibrary.OpenCamera = null;
                    Native.oc_close();
                }
            }
        }

        private void DemandOpen()
        {
            if (IsClosed)
            {
                throw new CameraException("Camera closed");
            }
        }
    }

    /// <summary>The thirteen functions. They pass text as bytes, because the runtime marshals UTF-8
    /// differently on each system. They state no calling convention: x64 has only one.</summary>
    internal static unsafe class Native
    {
        private const string Library = "orvane_desktop_camera";

        [DllImport(Library)] internal static extern void oc_library_dir(byte[] dir);
        [DllImport(Library)] internal static extern int oc_scan();
        [DllImport(Library)] internal static extern IntPtr oc_libraries();
        [DllImport(Library)] internal static extern IntPtr oc_info(int index);
        [DllImport(Library)] internal static extern int oc_open(
            int index, int width, int height, int bin, int format,
            long exposureUs, int gain, int offset);
        [DllImport(Library)] internal static extern int oc_width();
        [DllImport(Library)] internal static extern int oc_height();
        [DllImport(Library)] internal static extern int oc_buffer_size();
        [DllImport(Library)] internal static extern int oc_read(
            byte* buffer, int bufferLength, int timeoutMs);
        [DllImport(Library)] internal static extern int oc_apply(
            long exposureUs, int gain, int offset);
        [DllImport(Library)] internal static extern double oc_temperature();
        [DllImport(Library)] internal static extern void oc_close();
        [DllImport(Library)] internal static extern IntPtr oc_error();

        /// <summary>A copy of the library's text. A name need not be valid UTF-8.</summary>
        internal static string Text(IntPtr text)
        {
            byte* start = (byte*)text;
            int length = 0;
            while (start[length] != 0)
            {
                ++length;
            }
            return Encoding.UTF8.GetString(start, length);
        }
    }
}
