// Reads frames of the first camera, changes the exposure while it streams, and prints how bright
// frames are.
//   LiveStatistics SDK-DIRECTORY
using System;
using System.Linq;
using Orvane.DesktopCamera;

static class LiveStatistics
{
    static void Watch(string directory)
    {
        ScanResult found = CameraLibrary.Scan(directory);
        if (found.Cameras.Count == 0)
        {
            throw new CameraException("No camera found. " + found.Error);
        }
        var settings = new CameraSettings
        {
            Width = 640, Height = 480, Format = Format.Raw8, Gain = 100
        };
        using (Camera camera = CameraLibrary.Open(found.Cameras[0], settings))
        {
            Console.WriteLine("{0}: {1} x {2}", camera.Info.Name, camera.Width, camera.Height);
            byte[] buffer = new byte[camera.BufferSize]; // used for every frame
            foreach (long exposureUs in new[] { 5000L, 20000L, 80000L })
            {
                camera.Apply(exposureUs, 100, 10);
                for (int frame = 0; frame < 4; ++frame) // the first may still have the old exposure
                {
                    camera.Read(buffer);
                }
                double mean = camera.Read(buffer).ToArray().Average(pixel => pixel);
                Console.WriteLine(FormattableString.Invariant(
                    $"{exposureUs / 1000.0:F1} ms: mean {mean:F1}"));
            }
        }
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: LiveStatistics SDK-DIRECTORY");
            return 2;
        }
        try
        {
            Watch(arguments[0]);
            return 0;
        }
        catch (CameraException error)
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
