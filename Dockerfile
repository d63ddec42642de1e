# The command in a container, of Debian's packages alone:
#   docker build --tag ovik-tsne .
#   docker run --rm --user "$(id -u):$(id -g)" --volume "$PWD:/data" ovik-tsne MATRIX --out-dir out
ARG BASE=debian:12-slim

FROM ${BASE} AS build
# Those of scripts/common.sh but for gnuplot, which draws at run time.
RUN apt-get update \
    && apt-get install --yes --no-install-recommends \
        cmake \
        g++ \
        libcli11-dev \
        libgoogle-glog-dev \
        libhdf5-dev \
        libminizip-dev \
        libpugixml-dev \
        libxxhash-dev \
        make \
        nlohmann-json3-dev \
        zlib1g-dev \
    && rm -rf /var/lib/apt/lists/*
COPY . /source
WORKDIR /source
RUN cmake --preset tool \
    && cmake --build --preset tool --parallel "$(nproc)" \
    && cmake --install build/tool --prefix /opt/ovik --strip

FROM ${BASE}
LABEL org.opencontainers.image.title="ovik-tsne" \
      org.opencontainers.image.description="t-SNE of gene expression matrices" \
      org.opencontainers.image.licenses="MIT"
# procps is for workflow managers, which watch what a process takes.
RUN apt-get update \
    && apt-get install --yes --no-install-recommends \
        fonts-dejavu-core \
        fonts-liberation2 \
        gnuplot-nox \
        libgomp1 \
        libgoogle-glog0v6 \
        libminizip1 \
        libpugixml1v5 \
        procps \
        zlib1g \
    && rm -rf /var/lib/apt/lists/* \
    && useradd --uid 1000 --create-home ovik
COPY --from=build /opt/ovik/bin/ovik-tsne /usr/local/bin/ovik-tsne
# The caches of fonts land where every user may write.
ENV XDG_CACHE_HOME=/tmp
USER ovik
WORKDIR /data
ENTRYPOINT ["ovik-tsne"]
