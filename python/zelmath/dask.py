"""Stationing at cluster scale on Dask.

An :class:`zelmath.Alignment` pickles by its definition, so Dask ships it to
every worker, which rebuilds it once per task. :func:`station` maps the
vectorised :meth:`zelmath.Alignment.station` over the partitions of a Dask
DataFrame: each partition is stationed in one C++ call, and a point set larger
than one machine's memory is read, stationed and written partition by
partition.

Recipe (a local cluster; a real one is the same with its scheduler address)::

    import dask.dataframe as dd
    from dask.distributed import Client, LocalCluster
    import zelmath, zelmath.dask

    a = zelmath.read_landxml("alignment.xml")
    with LocalCluster(n_workers=2, threads_per_worker=1) as cluster, Client(cluster):
        points = dd.read_csv("scan-*.csv")              # id,east,north,height
        result = zelmath.dask.station(points, a, height="height")
        result.to_csv("stationed-*.csv", index=False)  # or .to_parquet(...) with pyarrow

Units and signs are those of :meth:`zelmath.Alignment.station`: metres,
radians clockwise from North, offsets positive to the right.
"""

from __future__ import annotations

from typing import Optional

import numpy as np

from . import Alignment, StationTable

__all__ = ["station", "station_partition", "RESULT_COLUMNS"]

#: The columns :func:`station` appends, with their dtypes.
RESULT_COLUMNS = {
    "station": np.float64,
    "offset": np.float64,
    "element": np.int32,
    "element_type": np.int32,
    "azimuth": np.float64,
    "radius": np.float64,
    "design_height": np.float64,
    "height_difference": np.float64,
    "tunnel_metre": np.float64,
    "status": np.int32,
    "displayed_station": np.float64,
    "region": np.int32,
    "applied_cant": np.float64,
}
assert tuple(RESULT_COLUMNS) == StationTable._columns


def station_partition(df, alignment: Alignment, east: str = "east", north: str = "north",
                      height: Optional[str] = None, threads: int = 1):
    """Stations one pandas DataFrame: a copy of it with the columns of
    :class:`zelmath.StationTable` appended (see :data:`RESULT_COLUMNS`)."""
    h = None if height is None else df[height].to_numpy(dtype=np.float64)
    r = alignment.station(df[east].to_numpy(dtype=np.float64), df[north].to_numpy(dtype=np.float64), h,
                          threads=threads)
    out = df.copy()
    for name in RESULT_COLUMNS:
        out[name] = r[name]
    return out


def station(ddf, alignment: Alignment, east: str = "east", north: str = "north", height: Optional[str] = None,
            threads: int = 1):
    """Stations the points of a Dask DataFrame, partition by partition.

    ddf : dask.dataframe.DataFrame with the coordinate columns (metres).
    alignment : the :class:`zelmath.Alignment`; shipped to the workers by pickling.
    east, north, height : column names; height is optional (measured heights).
    threads : threads per partition call (1 suits one worker thread per core).

    Returns a lazy Dask DataFrame: the input columns and the stationing columns
    of :data:`RESULT_COLUMNS`. Compute it, or write it with ``to_csv`` or
    ``to_parquet``. The values equal those of one
    :meth:`zelmath.Alignment.station` call over all points.
    """
    import pandas as pd

    meta = ddf._meta.copy()
    for name, dtype in RESULT_COLUMNS.items():
        meta[name] = pd.Series(dtype=dtype)
    return ddf.map_partitions(station_partition, alignment, east=east, north=north, height=height,
                              threads=threads, meta=meta)
