// Lists the SDKs that were found and the cameras with their limits.
//   ListCameras SDK-DIRECTORY
using System;
using Orvane.DesktopCamera;

static class ListCameras
{
    static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: ListCameras SDK-DIRECTORY");
            return 2;
        }
        ScanResult found = CameraLibrary.Scan(arguments[0]);
        string libraries = string.Join(", ", found.Libraries);
        Console.WriteLine("SDKs: " + (libraries != "" ? libraries : "none"));
        if (found.Error != "")
        {
            Console.WriteLine("Some cameras are missing: " + found.Error);
        }
        foreach (CameraInfo camera in found.Cameras)
        {
            string kind = camera.Bayer == Bayer.None ? "mono" : "colour (" + camera.Bayer + ")";
            Console.WriteLine("{0,3} {1}: {2} x {3}, {4}", camera.Index, camera.Name,
                              camera.MaxWidth, camera.MaxHeight, kind);
        }
        return found.Cameras.Count > 0 ? 0 : 1;
    }
}
